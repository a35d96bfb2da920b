import QtQuick

// A list in rounded groups on a grey ground. Its model gives every row a `section`; where that
// changes a new group begins, under its title.
ListPane {
    id: root

    // The title over the group `section`; empty: only a gap.
    property var sectionTitle: section => section

    section.property: "section"
    section.delegate: SectionLabel {
        required property string section
        text: root.sectionTitle(section)
        topPadding: text.length > 0 ? 22 : 8
        bottomPadding: text.length > 0 ? 7 : 0
    }
}
