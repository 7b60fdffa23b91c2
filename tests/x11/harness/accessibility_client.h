#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/x11/harness/accessible_node.h"
#include "tests/x11/harness/deadline.h"
#include "tests/x11/harness/private_bus.h"

namespace ferrowyn::x11test {

/// A screen reader's view of the programs on a private session bus, over the accessibility bus that belongs to it.
/// Needs a QCoreApplication. Programs join when QT_LINUX_ACCESSIBILITY_ALWAYS_ON is 1 in their environment.
class AccessibilityClient : public QObject {
    Q_OBJECT

public:
    explicit AccessibilityClient(const PrivateBus& bus);
    ~AccessibilityClient() override;

    /// A program's window with this title, with all that it shows; nothing when none shows one.
    [[nodiscard]] std::optional<AccessibleNode> window(const std::string& title) const;
    /// One that has what this looks for, as menus and panels have no titles of their own.
    [[nodiscard]] std::optional<AccessibleNode> window(const std::function<bool(const AccessibleNode&)>& isIt) const;
    /// What has the keyboard focus, by the program's own last word on it, without what is in it.
    [[nodiscard]] std::optional<AccessibleNode> focused() const;

    /// Has the object do what it names so, such as "Press"; false when it offers no such action.
    [[nodiscard]] bool act(const AccessibleReference& reference, const std::string& action) const;

    /// Waits until the programs have told of every key that they have taken, and have their answers: Qt forgets, when
    /// a program ends, what it still waits for.
    void settle() const;

    /// Waits until the predicate holds, looking again at every event that a program tells of, and at short intervals
    /// for what none tells of.
    [[nodiscard]] bool waitUntil(const std::function<bool()>& predicate, milliseconds budget = patience) const;

private slots:
    void takeEvent(const QDBusMessage& message);

private:
    [[nodiscard]] QDBusMessage call(const AccessibleReference& reference, const char* interface, const char* method,
                                    const QVariantList& arguments = {}) const;
    [[nodiscard]] std::vector<AccessibleReference> children(const AccessibleReference& reference) const;
    /// Without what is in it; nothing for what is gone.
    [[nodiscard]] std::optional<AccessibleNode> read(const AccessibleReference& reference) const;
    /// All that is shown in it.
    void readChildren(AccessibleNode& node) const;
    [[nodiscard]] std::vector<AccessibleReference> topLevels() const;
    /// What is next below the program among all that this is in; nothing when this is gone.
    [[nodiscard]] std::optional<AccessibleReference> topLevelAround(AccessibleReference reference) const;
    [[nodiscard]] std::optional<AccessibleReference> parentOf(const AccessibleReference& reference) const;

    QString connectionName_;
    QDBusConnection connection_{QString()};
    std::optional<AccessibleReference> lastFocused_;
};

}  // namespace ferrowyn::x11test
