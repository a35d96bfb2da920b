#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/base/Error.h"

namespace sweepwright::platform {

class StringsTable;

/// A folder of the product's own resources on the host, laid out as in an app bundle: tables of
/// texts in "<language>.lproj", pictures in "icon" and "symbols".
///
/// Copies are cheap and share the tables read so far. Thread-safe.
class ResourceBundle {
  public:
    /// The bundle in `folder`, a host path; it need not exist, and then holds nothing.
    explicit ResourceBundle(std::string folder);

    /// The program's own: the folder that the environment's SWEEPWRIGHT_RESOURCES names, else the
    /// one at the place that installation gives it, seen from the folder of the executable, else
    /// "../share/sweepwright" from there, as in a build. Found on first use.
    static const ResourceBundle& main();

    /// Host path.
    [[nodiscard]] const std::string& folder() const { return folder_; }

    /// The folder "<name>.<type>" in this one as a bundle; none when there is no such folder.
    [[nodiscard]] std::optional<ResourceBundle> folderResource(std::string_view name,
                                                               std::string_view type) const;

    /// The host path of the file "<name>.<type>" in `subfolder`, which may be empty; none when
    /// there is no such file.
    [[nodiscard]] std::optional<std::string> pathForResource(std::string_view name,
                                                             std::string_view type,
                                                             std::string_view subfolder) const;

    /// The content of file `relative` ("icon/icon1.png") of at most kMaxFileBytes. A path that
    /// leads out of the folder is refused.
    [[nodiscard]] Result<std::string> readFile(std::string_view relative) const;

    /// The text under `key` in the table "<table>.strings" of this folder; when there is none,
    /// `value`, or `key` if `value` is empty. A table is read once and kept; what is wrong with it
    /// is logged then.
    [[nodiscard]] std::string localizedString(std::string_view key, std::string_view value,
                                              std::string_view table) const;

    static constexpr std::size_t kMaxFileBytes = std::size_t{16} << 20U;

  private:
    struct Tables;
    std::shared_ptr<const StringsTable> table(std::string_view name) const;

    std::string folder_;
    std::shared_ptr<Tables> tables_;
};

}  // namespace sweepwright::platform
