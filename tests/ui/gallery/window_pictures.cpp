#include "tests/ui/gallery/window_pictures.h"

#include <QApplication>
#include <QImage>
#include <QKeyEvent>
#include <QTranslator>
#include <QWindow>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/simulated/simulated_system.h"
#include "tests/ui/interface_models.h"
#include "ui/windows/about_view.h"
#include "ui/windows/onboarding_view.h"
#include "ui/windows/settings_view.h"
#include "ui/windows/utility_window.h"

namespace ferrowyn::test {
namespace {

enum class Scheme { light, dark };

/// What a translation may do to the windows: its words are half as long again, or run from right to left.
enum class Language { asWritten, wordy, rightToLeft };

/// Keeps what is put into a text, as a translator would.
QString rightToLeft(const QString& text) {
    const QString words = QStringLiteral("إظهار كل النوافذ المفتوحة والتطبيقات في القائمة عند الضغط على المفتاح ");
    QString result = words.repeated(text.size() / words.size() + 1).left(text.size()).trimmed();
    return text.contains(QStringLiteral("%1")) ? result + QStringLiteral(" %1") : result;
}

class StandInTranslator final : public QTranslator {
public:
    explicit StandInTranslator(Language language) : language_(language) {}
    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char* context, const char* text, const char* /*disambiguation*/,
                                    int /*count*/) const override {
        const QString written = QString::fromUtf8(text);
        if (QLatin1String(context) != QLatin1String("Ferrowyn") || written == QLatin1String("%1")) {
            return {};
        }
        if (language_ == Language::rightToLeft) {
            return rightToLeft(written);
        }
        return written + QStringLiteral(" und ") + written.left(written.size() / 2).remove(QStringLiteral("%1"));
    }

private:
    Language language_;
};

QPalette palette(Scheme scheme) {
    const bool isDark = scheme == Scheme::dark;
    QPalette palette(isDark ? QColor(0x2A, 0x2A, 0x2E) : QColor(0xF0, 0xF0, 0xF0));
    palette.setColor(QPalette::Highlight, QColor(48, 140, 198));
    return palette;
}

using Builder = std::function<std::unique_ptr<QWidget>(UtilityModel&)>;

struct Shot {
    std::string name;
    Builder build;
    std::function<void(SimulatedDesktop&)> arrange = [](SimulatedDesktop&) {};
    std::function<void(UtilityModel&)> change = [](UtilityModel&) {};
    const TextTable& texts = linuxTexts();
    bool isResizable = false;
    QSize size;
    /// How often the Tab key was pressed.
    int tabs = 0;
    Language language = Language::asWritten;
};

/// While it lives the windows speak another language.
class InLanguage {
public:
    explicit InLanguage(Language language) : translator_(language) {
        if (language != Language::asWritten) {
            QCoreApplication::installTranslator(&translator_);
        }
        QGuiApplication::setLayoutDirection(language == Language::rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    }
    ~InLanguage() {
        QCoreApplication::removeTranslator(&translator_);
        QGuiApplication::setLayoutDirection(Qt::LeftToRight);
    }
    InLanguage(const InLanguage&) = delete;
    InLanguage& operator=(const InLanguage&) = delete;

private:
    StandInTranslator translator_;
};

bool photograph(const Shot& shot, Scheme scheme, double scale, const QDir& folder) {
    const InLanguage language(shot.language);
    QApplication::setPalette(palette(scheme));
    UtilityModel model(shot.texts, shot.arrange);
    UtilityWindow window(shot.build(model), shot.isResizable);
    shot.change(model);
    if (shot.size.isValid()) {
        window.resize(shot.size);
    }
    window.show();
    window.activateWindow();
    QCoreApplication::processEvents();
    for (int tab = 0; tab < shot.tabs; ++tab) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
        QCoreApplication::sendEvent(window.windowHandle(), &press);
    }
    QImage picture((QSizeF(window.size()) * scale).toSize(), QImage::Format_RGB32);
    picture.setDevicePixelRatio(scale);
    picture.fill(Qt::magenta);
    window.render(&picture);
    const std::string name = shot.name + (scheme == Scheme::dark ? "-dark" : "-light") + (scale > 1 ? "-2x" : "");
    return picture.save(folder.filePath(QString::fromStdString("window-" + name + ".png")));
}

Builder settings(SettingsPane pane) {
    return [pane](UtilityModel& model) {
        auto view = std::make_unique<SettingsView>(model.platform, model.services);
        view->select(pane);
        return view;
    };
}

std::unique_ptr<QWidget> setup(UtilityModel& model) {
    return std::make_unique<OnboardingView>(
        model.platform, model.authorizer, model.preferences, [] {}, [] { return std::string(); });
}

std::unique_ptr<QWidget> about(UtilityModel& model) {
    return std::make_unique<AboutView>(model.platform, [] {});
}

void pinMany(UtilityModel& model) {
    std::vector<std::string> identifiers;
    for (const char* const name :
         {"Firefox", "Thunderbird", "発表資料エディタ — 第三四半期の見通しと今後の計画を書くための応用プログラム",
          "محرر النصوص العربية الطويل جدا الذي لا ينتهي اسمه أبدا في هذا اليوم الطويل جدا", "שלום עולם",
          "An Image Editor with an Uncommonly Long Name for the Whole Family and its Friends who never finish it",
          "Terminal", "Files", "Writer", "Maps", "Calculator"}) {
        identifiers.push_back("org.example.app" + std::to_string(identifiers.size()));
        model.desktop.setInstalledApplicationName(identifiers.back(), name);
    }
    model.pin(identifiers);
}

void distrust(SimulatedDesktop& desktop) {
    desktop.setTrusted(false);
    desktop.setSecureInput(true);
    desktop.loginItem().current = LoginItem::Status::requiresApproval;
}

void appendTranslated(std::vector<Shot>& list) {
    for (const auto& [name, language] :
         {std::pair("wordy", Language::wordy), std::pair("right-to-left", Language::rightToLeft)}) {
        const auto add = [&list, end = "-" + std::string(name), spoken = language](Shot shot) {
            shot.name += end;
            shot.language = spoken;
            list.push_back(std::move(shot));
        };
        for (const auto pane : allSettingsPanes) {
            add({.name = "settings-" + std::string(rawValue(pane)),
                 .build = settings(pane),
                 .change = pinMany,
                 .isResizable = true});
            add({.name = "settings-" + std::string(rawValue(pane)) + "-narrow",
                 .build = settings(pane),
                 .arrange = distrust,
                 .change = pinMany,
                 .isResizable = true,
                 .size = QSize(1, 1)});
        }
        add({.name = "setup-granted", .build = setup});
        add({.name = "setup-required", .build = setup, .arrange = distrust});
        add({.name = "setup-required-mac", .build = setup, .arrange = distrust, .texts = macTexts()});
        add({.name = "about", .build = about});
    }
}

std::vector<Shot> shots() {
    std::vector<Shot> list;
    for (const auto pane : allSettingsPanes) {
        list.push_back(
            {.name = "settings-" + std::string(rawValue(pane)), .build = settings(pane), .isResizable = true});
    }
    list.push_back({.name = "settings-general-mac",
                    .build = settings(SettingsPane::general),
                    .texts = macTexts(),
                    .isResizable = true});
    list.push_back({.name = "settings-windows-mac",
                    .build = settings(SettingsPane::windows),
                    .texts = macTexts(),
                    .isResizable = true});
    list.push_back({.name = "settings-general-untrusted",
                    .build = settings(SettingsPane::general),
                    .arrange = distrust,
                    .change =
                        [](UtilityModel& model) {
                            model.updates.check();
                            model.desktop.httpClient().answer(0,
                                                              HttpFailure{"The host ferrowyn.example was not found."});
                        },
                    .isResizable = true});
    list.push_back(
        {.name = "settings-general-checking",
         .build = settings(SettingsPane::general),
         .arrange = [](SimulatedDesktop& desktop) { desktop.loginItem().current = LoginItem::Status::notFound; },
         .change = [](UtilityModel& model) { model.updates.check(); },
         .isResizable = true});
    list.push_back({.name = "settings-shortcut-command",
                    .build = settings(SettingsPane::shortcut),
                    .change = [](UtilityModel& model) { model.preferences.modifier.set(SwitcherModifier::command); },
                    .isResizable = true});
    list.push_back({.name = "settings-favourites-crowded",
                    .build = settings(SettingsPane::favourites),
                    .change = pinMany,
                    .isResizable = true});
    list.push_back({.name = "settings-favourites-narrow",
                    .build = settings(SettingsPane::favourites),
                    .change = pinMany,
                    .isResizable = true,
                    .size = QSize(560, 340)});
    list.push_back({.name = "settings-appearance-narrow",
                    .build = settings(SettingsPane::appearance),
                    .isResizable = true,
                    .size = QSize(560, 340)});
    for (int tabs = 1; tabs <= 4; ++tabs) {
        list.push_back({.name = "focus-" + std::to_string(tabs),
                        .build = settings(SettingsPane::appearance),
                        .isResizable = true,
                        .tabs = tabs});
    }
    list.push_back({.name = "setup-focus", .build = setup, .arrange = distrust, .tabs = 1});
    list.push_back({.name = "setup-granted", .build = setup});
    list.push_back({.name = "setup-granted-mac", .build = setup, .texts = macTexts()});
    list.push_back({.name = "setup-required", .build = setup, .arrange = distrust});
    list.push_back({.name = "setup-required-mac", .build = setup, .arrange = distrust, .texts = macTexts()});
    list.push_back({.name = "about", .build = about});
    appendTranslated(list);
    return list;
}

}  // namespace

bool drawWindows(const QDir& folder) {
    bool isSaved = true;
    for (const auto& shot : shots()) {
        for (const auto scheme : {Scheme::light, Scheme::dark}) {
            for (const double scale : {1.0, 2.0}) {
                isSaved = photograph(shot, scheme, scale, folder) && isSaved;
            }
        }
    }
    return isSaved;
}

}  // namespace ferrowyn::test
