#include "projectlibrary.h"

#include "blanks.h"
#include "localfile.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTimer>

ProjectLibrary::ProjectLibrary(QObject *parent) : QObject(parent)
{
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &ProjectLibrary::refreshSoon);
}

ProjectLibrary::~ProjectLibrary() = default;

void ProjectLibrary::setStore(SessionStore *store)
{
    m_store = store;
    m_listing = store ? std::make_unique<ProjectListing>(*store) : nullptr;
}

void ProjectLibrary::componentComplete()
{
    refresh();
}

QString ProjectLibrary::countText() const
{
    const int count = m_projects.count();
    return QString::number(count) + (count > 1 ? QStringLiteral(" projets") : QStringLiteral(" projet"))
           + QStringLiteral(" — format .orvprjct");
}

QString ProjectLibrary::deletionMessage() const
{
    if (!m_pendingDeletion)
        return {};
    return QStringLiteral("« ") + m_pendingDeletion->name + QStringLiteral(" » sera déplacé vers la corbeille.");
}

QUrl ProjectLibrary::documentsFolder() const
{
    return QUrl::fromLocalFile(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
}

void ProjectLibrary::refresh()
{
    if (!m_listing)
        return;
    m_projects.setEntries(m_listing->read());
    emit listingChanged();
    watchFolder();
}

void ProjectLibrary::watchFolder()
{
    // Watched again after each listing: a folder removed and made again is a new folder.
    const QString folder = m_store->folder();
    if (QFileInfo(folder).isDir() && !m_watcher.directories().contains(folder))
        m_watcher.addPath(folder);
}

void ProjectLibrary::refreshSoon()
{
    // A save is a temporary file and a rename: one listing for both.
    if (m_refreshQueued)
        return;
    m_refreshQueued = true;
    QTimer::singleShot(0, this, [this] {
        m_refreshQueued = false;
        refresh();
    });
}

void ProjectLibrary::openSession(const TimerSession &session)
{
    if (m_engine)
        m_engine->loadSession(session);
    if (m_flow)
        m_flow->setStage(AppFlowState::Workspace);
}

void ProjectLibrary::open(const QString &path)
{
    if (!m_store)
        return;
    QString error;
    const std::optional<TimerSession> session = m_store->read(path, &error);
    if (!session) {
        m_toasts->showError(QStringLiteral("Projet illisible : ") + error);
        return;
    }
    // One file per show: a copy or a hand-made file becomes the show's own file now, so that
    // going back to the library never finds it twice.
    if (!m_store->adopt(path, *session, &error))
        m_toasts->showError(QStringLiteral("Échec de sauvegarde : ") + error);
    openSession(*session);
}

void ProjectLibrary::create(const QVariant &session)
{
    if (!m_store || !session.canConvert<TimerSession>())
        return;
    const TimerSession show = session.value<TimerSession>();
    QString error;
    const bool saved = m_store->save(show, &error).has_value();
    if (!saved)
        m_toasts->showError(QStringLiteral("Erreur de création : ") + error);
    refresh();
    if (saved)
        openSession(show);
}

void ProjectLibrary::requestEdit(const QString &path)
{
    if (!m_store)
        return;
    if (const std::optional<TimerSession> session = m_store->read(path))
        emit editRequested(QVariant::fromValue(*session));
}

void ProjectLibrary::saveEdited(const QVariant &session)
{
    if (!m_store || !session.canConvert<TimerSession>())
        return;
    QString error;
    if (m_store->save(session.value<TimerSession>(), &error))
        m_toasts->showSuccess(QStringLiteral("Fiche projet mise à jour"));
    else
        m_toasts->showError(QStringLiteral("Échec de sauvegarde : ") + error);
    refresh();
}

void ProjectLibrary::beginRename(const QString &path)
{
    if (m_renamingPath == path)
        return;
    m_renamingPath = path;
    emit renamingPathChanged();
}

void ProjectLibrary::commitRename(const QString &text)
{
    const QString path = m_renamingPath;
    if (path.isEmpty())
        return;
    cancelRename();
    const QString name = trimmedOfBlanks(text);
    if (name.isEmpty() || !m_store)
        return;
    m_store->rename(path, name); // a failure leaves the name as it was, without a word
    refresh();
}

void ProjectLibrary::cancelRename()
{
    beginRename(QString());
}

void ProjectLibrary::duplicate(const QString &path)
{
    if (!m_store)
        return;
    if (m_store->duplicate(path))
        m_toasts->showSuccess(QStringLiteral("Projet dupliqué"));
    else
        m_toasts->showError(QStringLiteral("Duplication impossible"));
    refresh();
}

void ProjectLibrary::requestDelete(const QString &path)
{
    const int row = m_projects.rowOf(path);
    if (row < 0)
        return;
    m_pendingDeletion = m_projects.entries().at(row);
    emit pendingDeletionChanged();
}

void ProjectLibrary::confirmDelete()
{
    if (!m_pendingDeletion || !m_store)
        return;
    const QString path = m_pendingDeletion->id;
    cancelDelete();
    QString error;
    if (m_store->deleteProject(path, &error))
        m_toasts->showSuccess(QStringLiteral("Projet supprimé"));
    else
        m_toasts->showError(QStringLiteral("Suppression impossible : ") + error);
    refresh();
}

void ProjectLibrary::cancelDelete()
{
    if (!m_pendingDeletion)
        return;
    m_pendingDeletion.reset();
    emit pendingDeletionChanged();
}

void ProjectLibrary::importFrom(const QUrl &file)
{
    const std::optional<QString> path = localFileOf(file);
    if (!m_store || !path)
        return;
    if (const std::optional<TimerSession> session = m_store->importFrom(*path))
        openSession(*session);
}

void ProjectLibrary::requestExport(const QString &path)
{
    if (!m_store)
        return;
    m_pendingExport = m_store->read(path);
    if (m_pendingExport)
        emit exportRequested(QUrl::fromLocalFile(
            QDir(documentsFolder().toLocalFile()).filePath(SessionStore::exportFileName(*m_pendingExport))));
}

void ProjectLibrary::exportTo(const QUrl &file)
{
    const std::optional<TimerSession> session = std::exchange(m_pendingExport, std::nullopt);
    const std::optional<QString> path = localFileOf(file);
    if (session && m_store && path)
        m_store->exportTo(*session, *path);
}

void ProjectLibrary::cancelExport()
{
    m_pendingExport.reset();
}
