#pragma once

#include "appflowstate.h"
#include "projectlisting.h"
#include "projectlistmodel.h"
#include "sessionstore.h"
#include "timerengine.h"
#include "toastcenter.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QPointer>
#include <QQmlEngine>
#include <QQmlParserStatus>
#include <QUrl>

#include <memory>
#include <optional>

// What the project library page does to projects as files: lists them, opens, creates,
// renames, duplicates, imports, exports and moves them to the Trash, and reports the outcome
// as toasts. One verb per action of the operator; the page only lays out what it holds.
//
// It lists the folder when the page is made, after each of its own changes, and whenever the
// folder changes on disk while the page is shown (a project copied in by hand appears at
// once). Opening, creating or importing a project loads it into the engine and moves the flow
// on to the console.
class ProjectLibrary : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    QML_ELEMENT
    Q_INTERFACES(QQmlParserStatus)

    Q_PROPERTY(SessionStore *store READ store WRITE setStore REQUIRED FINAL)
    Q_PROPERTY(TimerEngine *engine READ engine WRITE setEngine REQUIRED FINAL)
    Q_PROPERTY(AppFlowState *flow READ flow WRITE setFlow REQUIRED FINAL)
    Q_PROPERTY(ToastCenter *toasts READ toasts WRITE setToasts REQUIRED FINAL)

    Q_PROPERTY(ProjectListModel *projects READ projects CONSTANT FINAL)
    // "0 projet — format .orvprjct", "2 projets — format .orvprjct"
    Q_PROPERTY(QString countText READ countText NOTIFY listingChanged FINAL)
    // The project whose name is being edited in place; empty when none is.
    Q_PROPERTY(QString renamingPath READ renamingPath NOTIFY renamingPathChanged FINAL)
    // The project waiting for the operator to confirm its move to the Trash.
    Q_PROPERTY(bool deletionPending READ deletionPending NOTIFY pendingDeletionChanged FINAL)
    Q_PROPERTY(QString deletionMessage READ deletionMessage NOTIFY pendingDeletionChanged FINAL)
    // Where the import and export dialogs start.
    Q_PROPERTY(QUrl documentsFolder READ documentsFolder CONSTANT FINAL)

public:
    explicit ProjectLibrary(QObject *parent = nullptr);
    ~ProjectLibrary() override;

    SessionStore *store() const { return m_store; }
    void setStore(SessionStore *store);
    TimerEngine *engine() const { return m_engine; }
    void setEngine(TimerEngine *engine) { m_engine = engine; }
    AppFlowState *flow() const { return m_flow; }
    void setFlow(AppFlowState *flow) { m_flow = flow; }
    ToastCenter *toasts() const { return m_toasts; }
    void setToasts(ToastCenter *toasts) { m_toasts = toasts; }

    ProjectListModel *projects() { return &m_projects; }
    QString countText() const;
    QString renamingPath() const { return m_renamingPath; }
    bool deletionPending() const { return m_pendingDeletion.has_value(); }
    QString deletionMessage() const;
    QUrl documentsFolder() const;

    // Reads the folder again and shows what it holds.
    Q_INVOKABLE void refresh();

    // Loads the project into the engine and goes to the console; an unreadable file says why.
    Q_INVOKABLE void open(const QString &path);
    // Saves a show just made in the project sheet, then opens it.
    Q_INVOKABLE void create(const QVariant &session);
    // Reads the project for its sheet: editRequested(session) when it can be read, else nothing.
    Q_INVOKABLE void requestEdit(const QString &path);
    // Saves a show edited in the project sheet under its own file. The engine is not touched.
    Q_INVOKABLE void saveEdited(const QVariant &session);

    // In-place renaming of one row at a time.
    Q_INVOKABLE void beginRename(const QString &path);
    // Ends the renaming; a name that is not blank once trimmed of its spaces and tabs renames
    // the project. A failure says nothing.
    Q_INVOKABLE void commitRename(const QString &text);
    Q_INVOKABLE void cancelRename();

    Q_INVOKABLE void duplicate(const QString &path);

    // Asks for confirmation; confirmDelete() then moves the file to the Trash.
    Q_INVOKABLE void requestDelete(const QString &path);
    Q_INVOKABLE void confirmDelete();
    Q_INVOKABLE void cancelDelete();

    // Reads a project file chosen by the operator into the library and opens it; a file that
    // cannot be read changes nothing and says nothing.
    Q_INVOKABLE void importFrom(const QUrl &file);
    // Reads the project to export: exportRequested(a file named after it in the Documents
    // folder) when it can be read.
    Q_INVOKABLE void requestExport(const QString &path);
    // Writes the project asked for to the file chosen by the operator; failures are silent.
    Q_INVOKABLE void exportTo(const QUrl &file);
    Q_INVOKABLE void cancelExport();

    void classBegin() override {}
    void componentComplete() override;

signals:
    void listingChanged();
    void renamingPathChanged();
    void pendingDeletionChanged();
    void editRequested(const QVariant &session);
    void exportRequested(const QUrl &proposedFile);

private:
    void openSession(const TimerSession &session);
    void watchFolder();
    void refreshSoon();

    QPointer<SessionStore> m_store;
    QPointer<TimerEngine> m_engine;
    QPointer<AppFlowState> m_flow;
    QPointer<ToastCenter> m_toasts;
    ProjectListModel m_projects;
    std::unique_ptr<ProjectListing> m_listing;
    QFileSystemWatcher m_watcher;
    bool m_refreshQueued = false;
    QString m_renamingPath;
    std::optional<ProjectMeta> m_pendingDeletion;
    std::optional<TimerSession> m_pendingExport;
};
