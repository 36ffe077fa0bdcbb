#include "tools/shell_quote.h"

namespace reelcrate {

QString shellQuoted(QString text) {
    text.remove(QChar(u'\0'));
    text.replace(u'\'', QStringLiteral("'\\''"));
    return u'\'' + text + u'\'';
}

}  // namespace reelcrate
