Apps {
    openRow: 2
}
