#include "ui/gallery/GalleryScreen.h"
