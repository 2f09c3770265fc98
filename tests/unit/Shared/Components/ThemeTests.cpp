// The colours of the theme as the program has them, judged by how well they can be read.

#include "Shared/Components/Contrast.h"

#include <QFont>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QtQml/QQmlExtensionPlugin>

#include <gtest/gtest.h>

#include <memory>
#include <string>

Q_IMPORT_QML_PLUGIN(Cairnfield_ComponentsPlugin)

namespace cairnfield {
namespace {

constexpr auto surfaces = {"window", "sidebar", "surface", "surfaceRaised"};
constexpr auto textColors = {"text",   "textSecondary", "accent", "green", "blue",
                             "orange", "red",           "purple", "yellow"};
constexpr auto badgeColors = {"textSecondary", "accent", "green",  "blue",
                              "orange",        "red",    "purple", "yellow"};

class Theme : public testing::Test {
protected:
    Theme() {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        application_ = std::make_unique<QGuiApplication>(argumentCount_, arguments_);
        engine_ = std::make_unique<QQmlEngine>();
        engine_->addImportPath("qrc:/qt/qml");
        QQmlComponent component(engine_.get());
        component.setData(
            "import QtQml\nimport Cairnfield.Components\nQtObject { property QtObject theme: Theme }", {});
        holder_.reset(component.create());
        if (holder_) theme_ = holder_->property("theme").value<QObject*>();
        EXPECT_TRUE(theme_) << component.errorString().toStdString();
    }

    [[nodiscard]] QColor color(const char* name) const {
        const QVariant value = theme_->property(name);
        EXPECT_TRUE(value.isValid()) << name;
        return value.value<QColor>();
    }

    void expectReadable() const {
        for (const char* surface : surfaces) {
            for (const char* text : textColors)
                EXPECT_GE(contrastRatio(color(text), color(surface)), readableContrast)
                    << text << " on " << surface;
        }
        EXPECT_GE(contrastRatio(color("textOnAccent"), color("accent")), readableContrast);
        expectBadgesReadable();
        expectSelectedRowsReadable();
    }

private:
    void expectBadgesReadable() const {
        const double opacity = theme_->property("badgeOpacity").toDouble();
        for (const char* surface : {"window", "surface", "surfaceRaised"}) {
            for (const char* tint : badgeColors) {
                const QColor fill = mix(color(tint), color(surface), opacity);
                EXPECT_GE(contrastRatio(color(tint), fill), readableContrast)
                    << tint << " badge on " << surface;
            }
        }
    }

    void expectSelectedRowsReadable() const {
        for (const char* surface : {"window", "surface"}) {
            for (const char* selection : {"selection", "hover"}) {
                const QColor over = color(selection);
                const QColor fill = mix(QColor(over.rgb()), color(surface), over.alphaF());
                for (const char* text : textColors)
                    EXPECT_GE(contrastRatio(color(text), fill), readableContrast)
                        << text << " on a " << selection << " row";
            }
        }
    }

    int argumentCount_ = 1;
    std::string programName_ = "ThemeTests";
    char* arguments_[2] = {programName_.data(), nullptr};
    std::unique_ptr<QGuiApplication> application_;
    std::unique_ptr<QQmlEngine> engine_;
    std::unique_ptr<QObject> holder_;

protected:
    QObject* theme_ = nullptr;
};

TEST_F(Theme, IsReadableInTheLight) {
    expectReadable();
}

TEST_F(Theme, IsReadableInTheDark) {
    theme_->setProperty("dark", true);
    ASSERT_NE(color("window"), QColor("#F6F6F8"));
    expectReadable();
}

TEST_F(Theme, MakesAnyAccentOfTheDesktopReadable) {
    for (const bool dark : {false, true}) {
        theme_->setProperty("dark", dark);
        for (const char* accent : {"#FFE000", "#101010", "#FFFFFF", "#E01B24", "#33D17A", "#9141AC"}) {
            theme_->setProperty("desktopAccent", QColor(accent));
            for (const char* surface : surfaces)
                EXPECT_GE(contrastRatio(color("accent"), color(surface)), readableContrast)
                    << accent << " on " << surface;
            EXPECT_GE(contrastRatio(color("textOnAccent"), color("accent")), readableContrast) << accent;
        }
    }
}

TEST_F(Theme, DrawsBordersAndCaptionsLikeTextWithHighContrast) {
    for (const bool dark : {false, true}) {
        theme_->setProperty("dark", dark);
        theme_->setProperty("highContrast", true);
        EXPECT_EQ(color("border"), color("text"));
        EXPECT_EQ(color("controlBorder"), color("text"));
        EXPECT_EQ(color("textSecondary"), color("text"));
    }
}

TEST_F(Theme, StandsStillWithReducedMotion) {
    EXPECT_EQ(theme_->property("duration").toInt(), 150);
    theme_->setProperty("reducedMotion", true);
    EXPECT_EQ(theme_->property("duration").toInt(), 0);
}

TEST_F(Theme, TakesItsSizesFromTheDesktopsFont) {
    theme_->setProperty("basePointSize", 11.0);
    EXPECT_EQ(theme_->property("captionFont").value<QFont>().pointSizeF(), 10);
    EXPECT_EQ(theme_->property("bodyFont").value<QFont>().pointSizeF(), 11);
    EXPECT_EQ(theme_->property("headlineFont").value<QFont>().pointSizeF(), 12);
    EXPECT_EQ(theme_->property("titleFont").value<QFont>().pointSizeF(), 17);
    EXPECT_EQ(theme_->property("heroFont").value<QFont>().pointSizeF(), 31);
}

}  // namespace
}  // namespace cairnfield
