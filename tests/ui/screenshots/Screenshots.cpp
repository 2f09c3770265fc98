// Draws the window in each scene, light and dark and at one and two device pixels for a point, and saves a
// picture of each. Usage: cairnfield-screenshots FOLDER [--sample] [SCENE...]; a sample is one picture of
// each scene, light at one device pixel and dark at two by turns. Without a display: it draws off screen and
// in software, so that the same program gives the same pictures. Fails when the window cannot be made, when
// QML complains, or when a picture cannot be saved.

#include "Features/Appearance/AppearanceViewModel.h"
#include "Features/MenuBar/MenuBarViewModel.h"
#include "support/App/AppHarness.h"
#include "support/AppModelStaging.h"
#include "support/FakePasteboard.h"
#include "support/FakeWorkspace.h"
#include "ui/screenshots/RecordScenes.h"
#include "ui/screenshots/ReviewScenes.h"
#include "ui/screenshots/SampleState.h"
#include "ui/screenshots/Scenes.h"

#include <QDir>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QtQml/QQmlExtensionPlugin>

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

Q_IMPORT_QML_PLUGIN(Cairnfield_AppearancePlugin)
Q_IMPORT_QML_PLUGIN(Cairnfield_CleanupReviewPlugin)
Q_IMPORT_QML_PLUGIN(Cairnfield_ComponentsPlugin)
Q_IMPORT_QML_PLUGIN(Cairnfield_HistoryPlugin)
Q_IMPORT_QML_PLUGIN(Cairnfield_ItemListsPlugin)
Q_IMPORT_QML_PLUGIN(Cairnfield_MenuBarPlugin)
Q_IMPORT_QML_PLUGIN(Cairnfield_PreferencesPlugin)
Q_IMPORT_QML_PLUGIN(Cairnfield_RecoveryVaultPlugin)
Q_IMPORT_QML_PLUGIN(Cairnfield_RootPlugin)
Q_IMPORT_QML_PLUGIN(Cairnfield_SavePanelPlugin)
Q_IMPORT_QML_PLUGIN(Cairnfield_WatchedFoldersPlugin)
Q_IMPORT_QML_PLUGIN(Cairnfield_WorktreesPlugin)

namespace cairnfield {

namespace {

bool hasComplaints = false;

void noteComplaint(QtMsgType type, const QMessageLogContext&, const QString& message) {
    std::fprintf(stderr, "%s\n", qPrintable(message));
    if (type != QtDebugMsg && type != QtInfoMsg) hasComplaints = true;
}

class StagedAppearance final : public Appearance {
public:
    explicit StagedAppearance(bool isDark) : settings_{.isDark = isDark, .prefersReducedMotion = true} {}
    [[nodiscard]] AppearanceSettings settings() const override { return settings_; }
    void onChange(std::function<void()>) override {}

private:
    AppearanceSettings settings_;
};

Task<> nothing() {
    co_return;
}

bool draw(const Scene& scene, bool isDark, const QString& file) {
    AppHarness app;
    app.wallClock.set(sampleNow);
    FakeWorkspace workspace;
    StagedAppearance look(isDark);
    AppearanceViewModel appearance(look);
    RootViewModel root(*app.model, spawn(app.loop, nothing()));
    FakePasteboard pasteboard;
    CleanupReviewViewModel review(*app.model, pasteboard);
    WorktreesViewModel worktrees(*app.model, workspace, app.wallClock, review);
    WatchedFoldersViewModel folders(*app.model, workspace, app.wallClock, FilePath("/home/ada"));
    PreferencesViewModel preferences(*app.model, app.wallClock);
    HistoryViewModel history(*app.model, workspace, pasteboard);
    SheetSavePanel savePanel(FilePath("/home/ada"));
    RecoveryVaultViewModel recovery(*app.model, workspace, savePanel, app.wallClock);

    MenuBarViewModel menuBar(*app.model, app.application);

    const bool isPanel = scene.surface == Surface::panel;
    const QVariantMap panelContent{{"viewModel", QVariant::fromValue(&menuBar)},
                                   {"appearance", QVariant::fromValue(&appearance)},
                                   {"hasRoundCorners", false}};
    const QVariantMap windowContent{
        {"viewModel", QVariant::fromValue(&root)},         {"appearance", QVariant::fromValue(&appearance)},
        {"worktrees", QVariant::fromValue(&worktrees)},    {"cleanupReview", QVariant::fromValue(&review)},
        {"watchedFolders", QVariant::fromValue(&folders)}, {"recovery", QVariant::fromValue(&recovery)},
        {"history", QVariant::fromValue(&history)},        {"preferences", QVariant::fromValue(&preferences)},
        {"savePanel", QVariant::fromValue(&savePanel)}};
    QQmlApplicationEngine engine;
    engine.addImportPath("qrc:/qt/qml");
    engine.setInitialProperties(isPanel ? panelContent : windowContent);
    engine.load(QUrl(isPanel ? "qrc:/qt/qml/Cairnfield/MenuBar/MenuBarPanel.qml"
                             : "qrc:/qt/qml/Cairnfield/Root/MainWindow.qml"));
    auto* const window =
        engine.rootObjects().isEmpty() ? nullptr : qobject_cast<QQuickWindow*>(engine.rootObjects()[0]);
    if (!window) return false;
    if (!isPanel) window->resize(scene.size);
    window->show();
    QCoreApplication::processEvents();
    Stage stage{AppModelStaging::state(*app.model),
                root,
                worktrees,
                review,
                folders,
                preferences,
                history,
                recovery,
                savePanel};
    scene.set(stage);
    // Layouts settle over a few turns; the picture itself is drawn by the call that takes it.
    for (int turn = 0; turn < 20; ++turn) QCoreApplication::processEvents();
    if (isPanel) {  // as high as what it shows, which only drawing finds out
        (void)window->grabWindow();
        QCoreApplication::processEvents();
    }
    return window->grabWindow().save(file);
}

bool wanted(const Scene& scene, const QStringList& names) {
    return names.isEmpty() || names.contains(QString::fromStdString(scene.name));
}

/// Whether a sample holds this picture of the scene with this number.
bool isSampled(std::size_t number, bool isDark, int scale) {
    const bool isTheDarkOnesTurn = number % 2 == 1;
    return isDark == isTheDarkOnesTurn && scale == (isTheDarkOnesTurn ? 2 : 1);
}

int drawAll(int argc, char** argv, int scale) {
    qputenv("QT_SCALE_FACTOR", QByteArray::number(scale));
    qInstallMessageHandler(noteComplaint);
    QGuiApplication application(argc, argv);
    QQuickStyle::setStyle("Basic");
    const QDir folder(application.arguments().at(1));
    QStringList names = application.arguments().mid(2);
    const bool isSample = names.removeAll("--sample") > 0;
    if (!folder.mkpath(".")) return EXIT_FAILURE;
    std::size_t number = 0;
    std::vector<Scene> all = scenes();
    for (Scene& scene : reviewScenes()) all.push_back(std::move(scene));
    for (Scene& scene : recordScenes()) all.push_back(std::move(scene));
    for (const Scene& scene : all) {
        ++number;
        if (!wanted(scene, names)) continue;
        for (const bool isDark : {false, true}) {
            if (isSample && !isSampled(number, isDark, scale)) continue;
            const QString name = QString("%1-%2%3.png")
                                     .arg(QString::fromStdString(scene.name), isDark ? "dark" : "light",
                                          scale == 1 ? "" : "-2x");
            if (!draw(scene, isDark, folder.filePath(name))) {
                std::fprintf(stderr, "%s could not be drawn\n", qPrintable(name));
                return EXIT_FAILURE;
            }
        }
    }
    return hasComplaints ? EXIT_FAILURE : EXIT_SUCCESS;
}

}  // namespace

}  // namespace cairnfield

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: cairnfield-screenshots FOLDER [--sample] [SCENE...]\n");
        return EXIT_FAILURE;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    setenv("LC_ALL", "en_US.UTF-8", 1);
    setenv("TZ", "UTC", 1);
    // The scale belongs to a process.
    const pid_t doubled = fork();
    if (doubled < 0) return EXIT_FAILURE;
    if (doubled == 0) return cairnfield::drawAll(argc, argv, 2);
    const int result = cairnfield::drawAll(argc, argv, 1);
    int status = 0;
    if (waitpid(doubled, &status, 0) != doubled || !WIFEXITED(status)) return EXIT_FAILURE;
    return result == EXIT_SUCCESS ? WEXITSTATUS(status) : result;
}
