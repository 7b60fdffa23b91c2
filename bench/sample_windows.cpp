#include "bench/sample_windows.h"

#include <array>
#include <memory>
#include <string>
#include <string_view>

namespace ferrowyn {

namespace {

constexpr std::array<std::string_view, 12> applications{"Firefox",
                                                        "Terminal",
                                                        "Files",
                                                        "Thunderbird Mail",
                                                        "LibreOffice Writer",
                                                        "Text Editor",
                                                        "Visual Studio Code",
                                                        "Document Viewer",
                                                        "GIMP",
                                                        "Calendar",
                                                        "Settings",
                                                        "Signal"};

constexpr std::array<std::string_view, 10> asciiTitles{"Inbox (12) - anna@example.org",
                                                       "fuzzy_matcher.cpp - ferrowyn - editor",
                                                       "build: make -j8 all",
                                                       "Quarterly report 2024 (final).odt",
                                                       "How to keep a desktop tidy - Wikipedia",
                                                       "~/projects/ferrowyn/src/core",
                                                       "Issue 1234: panel flickers on resize",
                                                       "Meeting notes, Tuesday",
                                                       "screenshot-2024-05-17.png",
                                                       "Downloads"};

constexpr std::array<std::string_view, 10> otherTitles{"Résumé — Übersicht der Anträge",
                                                       "Отчёт за третий квартал — черновик",
                                                       "週報 2024年5月 — 開発チーム",
                                                       "Λογισμικό και έγγραφα ΣΟΦΟΣ",
                                                       "회의록: 다음 분기 계획",
                                                       "İstanbul gezi planı – taslak",
                                                       "Fotos 👩‍👩‍👧‍👦 Familie 🇩🇪 Urlaub",
                                                       "تقرير الاجتماع الأسبوعي",
                                                       "บันทึกการประชุมประจำสัปดาห์",
                                                       "Cafe\u0301 de\u0301compose\u0301: menu du jour"};

class SampleElement final : public AXElement {
public:
    explicit SampleElement(std::size_t number) : number_(number) {}
    [[nodiscard]] bool equals(const AXElement& other) const override { return this == &other; }
    [[nodiscard]] std::size_t hash() const override { return number_; }

private:
    std::size_t number_;
};

AppWindow sampleWindow(std::size_t index, std::string_view title) {
    AppWindow window;
    const std::size_t application = index * 7 % applications.size();
    window.id = static_cast<WindowId>(index + 1);
    window.axElement = AXElementRef(std::make_shared<SampleElement>(index));
    window.pid = static_cast<Pid>(1000 + application);
    window.appName = applications[application];
    window.bundleIdentifier = "org.example." + window.appName;
    window.bundleURL = "/usr/share/applications/" + *window.bundleIdentifier + ".desktop";
    window.title = std::string(title) + " " + std::to_string(index);
    window.isOnActiveSpace = index % 4 != 0;
    window.zOrder = static_cast<std::int64_t>(index);
    return window;
}

}  // namespace

std::vector<AppWindow> asciiWindows(std::size_t count) {
    std::vector<AppWindow> windows;
    for (std::size_t i = 0; i < count; ++i) {
        windows.push_back(sampleWindow(i, asciiTitles[i % asciiTitles.size()]));
    }
    return windows;
}

std::vector<AppWindow> mixedWindows(std::size_t count) {
    std::vector<AppWindow> windows;
    for (std::size_t i = 0; i < count; ++i) {
        const auto& titles = i % 2 == 0 ? asciiTitles : otherTitles;
        windows.push_back(sampleWindow(i, titles[i / 2 % titles.size()]));
    }
    return windows;
}

}  // namespace ferrowyn
