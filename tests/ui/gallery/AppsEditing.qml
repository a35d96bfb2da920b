Apps {
    editing: true
}
