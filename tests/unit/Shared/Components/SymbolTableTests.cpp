#include "Shared/Components/SymbolTable.h"
#include "Shared/Components/Symbols.h"

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace cairnfield {
namespace {

QString resource(std::string_view symbolName) {
    return ":" +
           Symbols::source(QString::fromUtf8(symbolName.data(), static_cast<qsizetype>(symbolName.size())))
               .path();
}

/// The bounds of what is drawn at 160 pixels, ten for each unit of the grid.
QRect inkOf(const QString& file) {
    QSvgRenderer renderer(file);
    QImage image(160, 160, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter);
    painter.end();
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            if (qAlpha(image.pixel(x, y)) > 40) ink |= QRect(x, y, 1, 1);
    }
    return ink;
}

TEST(SymbolTable, HasAPictureForEverySymbol) {
    for (const SymbolFile& symbol : symbolFiles()) {
        const QString file = resource(symbol.symbolName);
        ASSERT_TRUE(QFile::exists(file)) << symbol.symbolName;
        EXPECT_FALSE(inkOf(file).isEmpty()) << symbol.symbolName;
    }
}

TEST(SymbolTable, DrawsWithinTheGridsMargin) {
    for (const SymbolFile& symbol : symbolFiles()) {
        const QRect ink = inkOf(resource(symbol.symbolName));
        EXPECT_TRUE(QRect(4, 4, 152, 152).contains(ink)) << symbol.symbolName;
    }
}

TEST(SymbolTable, DrawsLinesInBlackAlone) {
    for (const SymbolFile& symbol : symbolFiles()) {
        QFile file(resource(symbol.symbolName));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << symbol.symbolName;
        const QString text = QString::fromUtf8(file.readAll());
        EXPECT_TRUE(text.contains("stroke-width=\"1.5\"")) << symbol.symbolName;
        EXPECT_EQ(text.count('#'), text.count("#000\"")) << symbol.symbolName;
    }
}

TEST(SymbolTable, NamesEachSymbolOnce) {
    std::set<std::string> names;
    for (const SymbolFile& symbol : symbolFiles())
        EXPECT_TRUE(names.emplace(symbol.symbolName).second) << symbol.symbolName;
}

TEST(SymbolTable, KnowsEverySymbolThatTheProgramShows) {
    for (const std::string_view name : {"archivebox",
                                        "arrow.clockwise",
                                        "arrow.down.circle",
                                        "arrow.down.right",
                                        "arrow.triangle.branch",
                                        "arrow.up.doc",
                                        "arrow.up.right",
                                        "bell",
                                        "bell.badge",
                                        "bell.slash",
                                        "chart.bar",
                                        "chart.xyaxis.line",
                                        "checklist",
                                        "checkmark.circle",
                                        "checkmark.circle.fill",
                                        "circle",
                                        "circle.dotted",
                                        "clock.arrow.circlepath",
                                        "cloud",
                                        "doc.text",
                                        "exclamationmark.bubble",
                                        "exclamationmark.octagon",
                                        "exclamationmark.triangle",
                                        "folder",
                                        "folder.badge.minus",
                                        "folder.badge.plus",
                                        "gearshape",
                                        "hammer",
                                        "hand.raised",
                                        "internaldrive",
                                        "lock",
                                        "macwindow",
                                        "minus",
                                        "pause.circle",
                                        "person.crop.circle.badge.exclamationmark",
                                        "person.fill.checkmark",
                                        "pin.fill",
                                        "play.circle",
                                        "plus",
                                        "power",
                                        "puzzlepiece.extension",
                                        "questionmark.circle",
                                        "shippingbox",
                                        "sidebar.right",
                                        "sparkles",
                                        "square.grid.2x2",
                                        "trash"})
        EXPECT_FALSE(symbolFile(name).empty()) << name;
}

TEST(SymbolTable, GivesNothingForANameThatIsNone) {
    EXPECT_TRUE(symbolFile("no.such.symbol").empty());
    EXPECT_TRUE(Symbols::source("no.such.symbol").isEmpty());
}

}  // namespace
}  // namespace cairnfield
