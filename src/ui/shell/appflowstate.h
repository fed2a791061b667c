#pragma once

#include <QObject>
#include <QQmlEngine>

// Where the operator's window is: the splash, the project library or the console. Views move
// it directly; the window's content follows it.
//
// It lives with the shell, which owns the window and its transitions; the library and the
// console only ask it to move on (a project opened, the library asked for).
class AppFlowState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The application's one flow is made by the application")

    Q_PROPERTY(Stage stage READ stage WRITE setStage NOTIFY stageChanged FINAL)
    // The stage before the current one, for the transition between them.
    Q_PROPERTY(Stage previousStage READ previousStage NOTIFY stageChanged FINAL)
    // Where the splash leads: the library, or the console when a project was opened at launch.
    Q_PROPERTY(Stage stageAfterSplash READ stageAfterSplash WRITE setStageAfterSplash
                   NOTIFY stageAfterSplashChanged FINAL)

public:
    enum Stage { Splash, Sessions, Workspace };
    Q_ENUM(Stage)

    using QObject::QObject;

    Stage stage() const { return m_stage; }
    void setStage(Stage stage);
    Stage previousStage() const { return m_previousStage; }
    Stage stageAfterSplash() const { return m_stageAfterSplash; }
    void setStageAfterSplash(Stage stage);

signals:
    void stageChanged();
    void stageAfterSplashChanged();

private:
    Stage m_stage = Splash;
    Stage m_previousStage = Splash;
    Stage m_stageAfterSplash = Sessions;
};
