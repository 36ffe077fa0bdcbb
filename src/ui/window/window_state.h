#pragma once

#include "ui/logs/log_tail.h"
#include "ui/queue/queue_list_model.h"
#include "ui/window/run_progress.h"
#include "ui/window/window_controls.h"

#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QUrl>
#include <QUuid>
#include <QtQml/qqmlregistration.h>

#include <functional>

/// The controller as the window's QML sees it: state as properties, one operation per control.
/// What the controls show follows a change in the next turn of the event loop, once for all changes
/// of a turn. Main thread. The controller outlives it.
namespace reelcrate {

class Controller;

class WindowState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")

    Q_PROPERTY(reelcrate::WindowControls controls READ controls NOTIFY controlsChanged)
    Q_PROPERTY(reelcrate::QueueListModel* rows READ rows CONSTANT)
    Q_PROPERTY(reelcrate::LogTail* toolLog READ toolLog CONSTANT)
    Q_PROPERTY(reelcrate::LogTail* runLog READ runLog CONSTANT)
    Q_PROPERTY(QString summary READ summary NOTIFY summaryChanged)
    Q_PROPERTY(QString title READ title NOTIFY titleChanged)
    Q_PROPERTY(QString eventName READ eventName WRITE setEventName NOTIFY eventNameChanged)
    Q_PROPERTY(QString pastedLinks READ pastedLinks WRITE setPastedLinks NOTIFY pastedLinksChanged)
    Q_PROPERTY(QString outputFolder READ outputFolder NOTIFY outputFolderChanged)
    Q_PROPERTY(QStringList modes READ modes CONSTANT)
    Q_PROPERTY(int mode READ mode WRITE setMode NOTIFY modeChanged)
    Q_PROPERTY(QString version READ version CONSTANT)
    /// Of the rows that are not finished, for the question before the window closes on them.
    Q_PROPERTY(QString quitQuestion READ quitQuestion NOTIFY controlsChanged)
    Q_PROPERTY(QUrl folderPickerStart READ folderPickerStart CONSTANT)

public:
    /// `desktopFolder` is where the folder picker starts; empty when the system names none.
    WindowState(Controller& controller, const QString& desktopFolder, QObject* parent = nullptr);

    const WindowControls& controls() const { return m_controls; }
    QueueListModel* rows() { return &m_rows; }
    LogTail* toolLog() { return &m_toolLog; }
    LogTail* runLog() { return &m_runLog; }
    const RunProgress& runProgress() const { return m_runProgress; }
    QString summary() const;
    QString title() const;
    QString eventName() const;
    void setEventName(const QString& name);
    QString pastedLinks() const;
    void setPastedLinks(const QString& text);
    QString outputFolder() const;
    static QStringList modes();
    int mode() const;
    void setMode(int mode);
    static QString version();
    QUrl folderPickerStart() const;

    Q_INVOKABLE void addSongsFromFieldOrClipboard();
    /// The web addresses where there are any, then the links in text files, otherwise the text; all
    /// may be the drop's. Text files and tables without links are lists of songs.
    Q_INVOKABLE void addDropped(const QList<QUrl>& urls, const QString& text);
    /// Whether there are links in what is dropped, or files that may hold some.
    Q_INVOKABLE static bool takesDrop(const QList<QUrl>& urls, const QString& text);
    Q_INVOKABLE void pasteIntoField();
    Q_INVOKABLE void openOutput();
    Q_INVOKABLE void clearQueue();
    Q_INVOKABLE void downloadAll();
    Q_INVOKABLE void stopAll();
    Q_INVOKABLE void setUp();
    Q_INVOKABLE void scanForUpdate();
    Q_INVOKABLE void chooseFolder(const QUrl& folder);
    /// Whether the toolkit has an open dialog shown by the desktop; otherwise it paints one itself.
    Q_INVOKABLE static bool isOfTheDesktop(const QObject* dialog);
    Q_INVOKABLE static QUrl parentFolder(const QUrl& folder);
    Q_INVOKABLE static QString folderPath(const QUrl& folder);
    /// Empty when it could not be made; one that is there already is as good.
    Q_INVOKABLE static QUrl makeFolder(const QUrl& parent, const QString& name);

    Q_INVOKABLE void clickQueueArea();
    /// `modifiers` are Qt's keyboard modifiers.
    Q_INVOKABLE void clickRow(const QString& itemID, int modifiers);
    Q_INVOKABLE void actOnRow(const QString& itemID);
    /// Whether the row's menu is about all selected rows and not this one.
    Q_INVOKABLE bool takesSelection(const QString& itemID) const;
    Q_INVOKABLE void deleteFromRow(const QString& itemID, bool allSelected);
    Q_INVOKABLE bool canStop(const QString& itemID, bool allSelected) const;
    Q_INVOKABLE void stopFromRow(const QString& itemID, bool allSelected);
    /// Whether there is a text to take for a list of songs.
    Q_INVOKABLE bool canPasteSongList() const;
    Q_INVOKABLE void pasteSongList();
    /// Whether there is a complete song to name in a playlist.
    Q_INVOKABLE bool canSavePlaylist() const;
    Q_INVOKABLE void savePlaylist();
    /// Of the songs of the runs to come; videos have no such tags.
    Q_INVOKABLE bool canTagLoudness() const;
    Q_INVOKABLE bool tagsLoudness() const;
    Q_INVOKABLE void setTagsLoudness(bool tags);
    /// The row that the keyboard is at; -1 and empty text for none.
    Q_INVOKABLE int focusedIndex() const;
    Q_INVOKABLE QString focusedItemID() const;
    /// Does what the selected row's button does; of several, downloads those that are ready.
    Q_INVOKABLE void actOnFocusedRow();
    /// Whether the key, with Qt's modifiers, is one by which the queue is gone about in larger
    /// steps, or a row is chosen; `rowsInSight` is a page.
    Q_INVOKABLE bool pressQueueKey(int key, int modifiers, int rowsInSight);

    /// Why the row needs attention; empty when it does not.
    Q_INVOKABLE QString errorOf(const QString& itemID) const;
    /// Whether the row has no link, but the name of a song.
    Q_INVOKABLE bool isSong(const QString& itemID) const;
    /// The row's link, or those of all selected rows, one a line, each once. Of a song of a list
    /// the line that named it.
    Q_INVOKABLE QString linksOf(const QString& itemID, bool allSelected) const;
    /// The links of all rows that need attention.
    Q_INVOKABLE QString linksInNeed() const;
    Q_INVOKABLE void copyText(const QString& text) const;

    /// Rows that are being downloaded or wait for a slot.
    Q_INVOKABLE int unfinishedCount() const;
    /// What to ask before the window closes on them.
    QString quitQuestion() const;

Q_SIGNALS:
    void controlsChanged();
    void summaryChanged();
    void titleChanged();
    void eventNameChanged();
    void pastedLinksChanged();
    void outputFolderChanged();
    void modeChanged();
    /// An arrow key moved the focus among the rows.
    void focusMoved();
    /// The user wants the program to end, whatever is under way.
    void quitRequested();

private:
    QSet<QUuid> rowsMeant(const QString& itemID, bool allSelected) const;
    QString linksWhere(const std::function<bool(const DownloadItem&)>& isMeant) const;
    void followQueue();
    void refreshControls();
    void refreshTitle();

    Controller& m_controller;
    const QString m_desktopFolder;
    QueueListModel m_rows;
    LogTail m_toolLog;
    LogTail m_runLog;
    RunProgress m_runProgress;
    WindowControls m_controls;
    QTimer m_refresh;
    int m_shownPercent = -1;
};

}  // namespace reelcrate
