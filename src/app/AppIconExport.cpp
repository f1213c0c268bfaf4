// Writes the application icon as hicolor PNGs at build time, drawn by the same
// painter as the tray icon so the launcher and the tray agree.
#include "app/TrayIconPainter.h"

#include <QDir>
#include <QString>
#include <cstdio>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s OUTPUT_DIR\n", argv[0]);
        return 2;
    }
    const QString root = QString::fromLocal8Bit(argv[1]);
    for (int pixels : {16, 22, 24, 32, 48, 64, 128, 256}) {
        const QString dir = root + QStringLiteral("/hicolor/%1x%1/apps").arg(pixels);
        if (!QDir().mkpath(dir)) {
            std::fprintf(stderr, "cannot create %s\n", qPrintable(dir));
            return 1;
        }
        const QImage image = brenvik::paintTrayIcon(brenvik::StateColor::green, {}, pixels);
        if (!image.save(dir + QStringLiteral("/brenvik.png"), "PNG")) {
            std::fprintf(stderr, "cannot write %s/brenvik.png\n", qPrintable(dir));
            return 1;
        }
    }
    return 0;
}
