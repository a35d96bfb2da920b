import QtQuick
import Sweepwright.Kit

// Motions for any item; whoever uses them has one of these. Each takes the item, and where it ends,
// what runs then. For a person who wants reduced motion the item is at the end at once, and what
// would go on for ever does not begin.
QtObject {
    id: helper

    readonly property bool still: Appearance.reducedMotion

    // Swells from half its size, on a spring.
    function bounceAnimationForView(view: Item, completion: var): void {
        const motion = bounce.createObject(view, {view: view, completion: completion ?? null}) as SpringMotion;
        motion.jump(0.5);
        motion.to = 1;
    }
    // Swells and shrinks for ever.
    function pulseAnimationForView(view: Item): void {
        if (!still) pulse.createObject(view, {view: view});
    }
    // Shakes its head, sideways.
    function shakeAnimationForView(view: Item): void {
        if (still) return;
        const moves = Array.from(view.transform);
        let shift = moves.find(move => move.objectName === "shake");
        if (!shift) {
            shift = sideways.createObject(view);
            view.transform = [...moves, shift];
        }
        shake.createObject(shift, {shift: shift});
    }
    function fadeInView(view: Item, duration: int): void {
        run(fade.createObject(view, {target: view, from: 0, to: 1, span: duration}) as NumberAnimation);
    }
    function fadeOutView(view: Item, duration: int): void {
        run(fade.createObject(view, {target: view, from: view.opacity, to: 0, span: duration}) as NumberAnimation);
    }
    // It may end, and go, as soon as it begins; so not while it is being made.
    function run(motion: NumberAnimation): void {
        motion.start();
    }
    // Turns for ever, one turn in `duration` milliseconds.
    function rotateView(view: Item, duration: int): void {
        if (!still) turn.createObject(view, {target: view, duration: duration});
    }
    // A green badge with a check mark in the middle of `view`, for a moment.
    function showSuccessAnimationInView(view: Item, completion: var): void {
        badge.createObject(view, {completion: completion ?? null});
    }
    // Rings that spread in the middle of `view` until they are stopped.
    function showCleaningAnimationInView(view: Item): void {
        rotateView(rings.createObject(view), 3000);
    }
    function stopCleaningAnimationInView(view: Item): void {
        const shown = Array.from(view.children).find(child => child instanceof CleaningIndicator);
        if (!shown) return;
        // It is found no more, and gone when the loop comes round.
        shown.parent = null;
        shown.destroy();
    }

    readonly property Component bounce: Component {
        SpringMotion {
            id: spring
            required property Item view
            property var completion: null
            duration: 500
            damping: 0.5
            velocity: 0.8
            onValueChanged: view.scale = value
            onSettled: {
                if (to !== 1) return;
                if (spring.completion) spring.completion.call();
                spring.destroy();
            }
        }
    }
    readonly property Component pulse: Component {
        SequentialAnimation {
            id: beat
            running: true
            required property Item view
            loops: Animation.Infinite
            NumberAnimation { target: beat.view; property: "scale"; to: 1.1; duration: 300; easing.type: Easing.InOutQuad }
            NumberAnimation { target: beat.view; property: "scale"; to: 1.0; duration: 300; easing.type: Easing.InOutQuad }
        }
    }
    readonly property Component sideways: Component {
        Translate {
            objectName: "shake"
        }
    }
    // It begins at the first of its places and takes the same time from each to the next.
    readonly property list<real> places: [-20, 20, -20, 20, -10, 10, -5, 5, 0]
    readonly property Component shake: Component {
        NumberAnimation {
            id: way
            running: true
            required property Translate shift
            property real reached: 0
            target: way
            property: "reached"
            from: 0
            to: 8
            duration: 600
            onReachedChanged: {
                const before = Math.min(7, Math.floor(reached));
                const after = helper.places[before + 1];
                shift.x = helper.places[before] + (after - helper.places[before]) * (reached - before);
            }
            onStarted: shift.x = helper.places[0]
            onFinished: way.destroy()
        }
    }
    readonly property Component fade: Component {
        NumberAnimation {
            id: fading
            required property int span
            duration: Theme.duration(span)
            property: "opacity"
            easing.type: Easing.InOutQuad
            onFinished: fading.destroy()
        }
    }
    readonly property Component turn: Component {
        NumberAnimation {
            running: true
            property: "rotation"
            from: 0
            to: 360
            loops: Animation.Infinite
        }
    }
    readonly property Component badge: Component {
        SuccessBadge {}
    }
    readonly property Component rings: Component {
        CleaningIndicator {}
    }
}
