// Draws an icon in the sizes that desktops ask for: render_icon ICON.svg FOLDER SIZE...
// makes FOLDER/SIZE.png of each. Runs while the program is built.

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QStringList>
#include <QSvgRenderer>
#include <QTextStream>

#include <cstdlib>

namespace {

int complain(const QString& text) {
    QTextStream(stderr) << text << '\n';
    return EXIT_FAILURE;
}

bool draw(QSvgRenderer& icon, int size, const QString& path) {
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    icon.render(&painter, QRectF(0, 0, size, size));
    painter.end();
    return image.save(path);
}

}  // namespace

int main(int argc, char** argv) {
    QStringList words;
    for (int i = 0; i < argc; ++i)
        words.append(QString::fromLocal8Bit(argv[i]));
    if (words.size() < 4)
        return complain(QStringLiteral("Usage: render_icon ICON.svg FOLDER SIZE..."));

    QSvgRenderer icon(words[1]);
    if (!icon.isValid())
        return complain(words[1] + QStringLiteral(" is no picture."));
    for (const QString& size : words.mid(3)) {
        const QString path = QDir(words[2]).filePath(size + QStringLiteral(".png"));
        if (!draw(icon, size.toInt(), path))
            return complain(path + QStringLiteral(" cannot be written."));
    }
    return EXIT_SUCCESS;
}
