import QtQuick
import Kairon

// The operator window's content, following the flow: the splash, the project library or the
// console. A page fades in as the one before fades out (0.4 s easing out of the splash,
// 0.3 s easing in and out otherwise); a page that has faded out no longer exists.
Item {
    id: root

    required property AppFlowState flow
    property Component splash
    property Component sessions
    property Component workspace

    component Page: Loader {
        required property int stage
        readonly property bool current: root.flow.stage === stage
        anchors.fill: parent
        opacity: current ? 1 : 0
        active: current || opacity > 0
        visible: opacity > 0
        z: current ? 1 : 0
        Behavior on opacity {
            NumberAnimation {
                duration: root.flow.previousStage === AppFlowState.Splash ? 400 : 300
                easing.type: root.flow.previousStage === AppFlowState.Splash ? Easing.OutCubic
                                                                             : Easing.InOutQuad
            }
        }
    }

    // A sheet or a confirmation is open over the current page.
    readonly property bool sheetOpen: (sessionsPage.current && sessionsPage.item?.sheetOpen === true)
                                      || (workspacePage.current && workspacePage.item?.sheetOpen === true)

    Page { stage: AppFlowState.Splash; sourceComponent: root.splash }
    Page { id: sessionsPage; stage: AppFlowState.Sessions; sourceComponent: root.sessions }
    Page { id: workspacePage; stage: AppFlowState.Workspace; sourceComponent: root.workspace }
}
