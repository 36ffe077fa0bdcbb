#include "library/event_files.h"

#include "library/finished_files.h"

#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace reelcrate {

namespace {

namespace fs = std::filesystem;

using Kind = EventFile::Kind;
using Fault = EventFile::Fault;

// Beside those of the program's own downloads.
constexpr std::array otherSongs{"ogg", "oga", "opus", "wma", "mp2", "mka", "weba", "ac3", "aifc"};
constexpr std::array otherVideos{"avi", "mpg", "mpeg", "wmv", "flv", "ts", "ogv", "3gp"};
constexpr std::array playlists{"m3u", "m3u8"};

template <std::size_t count>
bool hasAny(const QString& name, const std::array<const char*, count>& extensions) {
    return std::any_of(extensions.begin(), extensions.end(), [&](const char* extension) {
        return hasExtension(name, QString::fromLatin1(extension));
    });
}

/// As this program's downloads, and those of browsers, name what is not whole yet.
bool isUnfinished(const QString& name) {
    static const QRegularExpression form(
        QStringLiteral(R"((\.(part(-Frag\d+)?|partial|ytdl|crdownload|opdownload|download|tmp)|)"
                       R"(\.temp\.\w+)$)"),
        QRegularExpression::CaseInsensitiveOption);
    return form.match(name).hasMatch();
}

/// The second kind stands beside each file that some systems copy to a drive of another's.
bool isDesktopLitter(const QString& fileName) {
    static const QSet<QString> names{QStringLiteral(".directory"), QStringLiteral(".ds_store"),
                                     QStringLiteral("thumbs.db"), QStringLiteral("desktop.ini")};
    return names.contains(fileName.toLower()) || fileName.startsWith(u"._");
}

QString textOf(const fs::path& path) {
    return QString::fromUtf8(path.native().c_str());
}

/// What is wrong with the entry as such.
std::optional<Fault> faultOf(const fs::directory_entry& entry) {
    std::error_code error;
    const fs::file_status status = entry.status(error);
    const bool isLink = entry.is_symlink(error);
    if (fs::is_directory(status))
        return isLink ? Fault::linkedFolder : Fault::unreadable;
    if (isLink && !fs::exists(status))
        return Fault::linkToNowhere;
    if (!fs::is_regular_file(status))
        return Fault::noRegularFile;
    // The toolkit reads and writes names as UTF-8 alone.
    const fs::path name = entry.path().filename();
    if (QFile::encodeName(textOf(name)) != name.native().c_str())
        return Fault::foreignName;
    return std::nullopt;
}

bool isReadableFolder(const fs::directory_entry& entry) {
    std::error_code error;
    return !entry.is_symlink(error) && entry.is_directory(error) &&
           ::access(entry.path().c_str(), R_OK | X_OK) == 0;
}

class Listing {
public:
    explicit Listing(const fs::path& folder) : m_top(folder) {}

    void add(const fs::directory_entry& entry) {
        const QString name = textOf(entry.path().lexically_relative(m_top));
        const QString fileName = name.section(u'/', -1);
        const bool isFolder = isReadableFolder(entry);
        if (name.startsWith(workFolderName + QStringLiteral("/"))) {
            if (!isFolder && fileName != u"lock")
                addWork(name.section(u'/', 0, 1));
            return;
        }
        if (isFolder || isDesktopLitter(fileName))
            return;
        EventFile file{name, kindOfFile(name), faultOf(entry)};
        const bool plays = file.kind == Kind::song || file.kind == Kind::video;
        if (!file.fault && plays && fileName.startsWith(u'.'))
            file.fault = Fault::hidden;
        m_files.append(file);
    }

    void addUnreadable() {
        m_files.append({QStringLiteral("."), Kind::foreign, Fault::unreadable});
    }

    QList<EventFile> sorted() {
        std::sort(m_files.begin(), m_files.end(),
                  [](const EventFile& a, const EventFile& b) { return a.name < b.name; });
        return m_files;
    }

private:
    /// A working folder with nothing but its lock is one whose song has come, or was never begun.
    void addWork(const QString& work) {
        if (m_works.contains(work))
            return;
        m_works.insert(work);
        m_files.append({work, Kind::halfDownload});
    }

    const fs::path m_top;
    QList<EventFile> m_files;
    QSet<QString> m_works;
};

}  // namespace

Kind kindOfFile(const QString& name) {
    if (isUnfinished(name))
        return Kind::halfDownload;
    if (hasFinishedExtension(name, DownloadMode::audio) || hasAny(name, otherSongs))
        return Kind::song;
    if (hasFinishedExtension(name, DownloadMode::video) || hasAny(name, otherVideos))
        return Kind::video;
    return hasAny(name, playlists) ? Kind::playlist : Kind::foreign;
}

QList<EventFile> eventFiles(const QString& folder) {
    const fs::path top = QFile::encodeName(folder).toStdString();
    Listing listing(top);
    std::error_code error;
    auto entry =
        fs::recursive_directory_iterator(top, fs::directory_options::skip_permission_denied, error);
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error))
        listing.add(*entry);
    if (error)
        listing.addUnreadable();
    return listing.sorted();
}

}  // namespace reelcrate
