#include "fuzz.h"
#include "queue/list_text.h"
#include "queue/song_list.h"

using namespace reelcrate;
using namespace reelcrate::fuzz;

namespace {

void checkSong(const NamedSong& song) {
    for (const QString& name : {song.artist, song.title}) {
        require(!name.isEmpty() && name == name.trimmed(), "a song has an artist and a title");
        require(name.size() <= 300, "a name is short");
        require(!name.contains(u'\n') && !name.contains(u'\t'), "a name is one line");
    }
    require(!song.seconds || (*song.seconds >= 1 && *song.seconds <= 3 * 3600),
            "a length is a song's");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider input(data, size);
    const QString text = anyText(input);
    textOfList(text.toLatin1());
    const ListText list = textOfList(text);
    if (!list.failure.isEmpty())
        return 0;
    const SongList songs = readSongList(list.text);
    int line = 0;
    for (const ListedSong& listed : songs.songs) {
        checkSong(listed.song);
        require(listed.line > line, "each line has one song, in order");
        line = listed.line;
    }
    for (const LineNote& note : songs.unread)
        require(!note.note.isEmpty() && !note.text.contains(u'\n'), "a note is one line");
    return 0;
}
