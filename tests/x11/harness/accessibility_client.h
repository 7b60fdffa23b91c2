#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <cstdint>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/x11/harness/child_process.h"
#include "tests/x11/harness/desktop_processes.h"
#include "tests/x11/harness/test_desktop.h"

namespace ferrowyn::x11test {

/// The address of an object on the accessibility bus.
struct AccessibleReference {
    QString service;
    QString path;
    friend bool operator==(const AccessibleReference&, const AccessibleReference&) = default;
};

std::ostream& operator<<(std::ostream& stream, const AccessibleReference& reference);

/// What assistive technology is told of one object at the moment of the question, with the children that are shown.
struct AccessibleNode {
    /// Bit numbers in the reply to "GetState".
    enum class State : unsigned {
        active = 1,
        checked = 4,
        enabled = 8,
        expanded = 10,
        focusable = 11,
        focused = 12,
        selectable = 22,
        selected = 23,
        sensitive = 24,
        showing = 25,
        visible = 30,
        checkable = 41,
    };

    AccessibleReference reference;
    /// The protocol's name for the role, such as "push button".
    std::string role;
    std::string name;
    std::string description;
    /// The text in a combo box or a text field; empty for other objects.
    std::string text;
    std::uint64_t states = 0;
    /// On the screen, in pixels.
    TestDesktop::Place place;
    /// nullopt for objects without a numeric value.
    std::optional<double> value;
    std::vector<AccessibleNode> children;

    [[nodiscard]] bool is(State state) const { return (states >> static_cast<unsigned>(state) & 1U) != 0; }
    /// The first match among this node and its descendants, in reading order; nullptr when there is none.
    [[nodiscard]] const AccessibleNode* find(const std::string& role, const std::string& name) const;
    [[nodiscard]] const AccessibleNode* find(const std::function<bool(const AccessibleNode&)>& isIt) const;
    /// "role: name", followed by the description in parentheses if there is one.
    [[nodiscard]] std::string line() const;
    /// The lines of the descendants, in reading order. Objects without a name and a role, which only serve the layout,
    /// are left out.
    [[nodiscard]] std::vector<std::string> lines() const;
};

std::ostream& operator<<(std::ostream& stream, const AccessibleNode& node);

/// A screen reader's view of the programs on a private session bus, over the accessibility bus that belongs to it.
/// Needs a QCoreApplication. Programs join when QT_LINUX_ACCESSIBILITY_ALWAYS_ON is 1 in their environment.
class AccessibilityClient : public QObject {
    Q_OBJECT

public:
    explicit AccessibilityClient(const PrivateBus& bus);
    ~AccessibilityClient() override;

    /// The shown window with this title, with its descendants; nullopt when there is none.
    [[nodiscard]] std::optional<AccessibleNode> window(const std::string& title) const;
    /// The first shown window for which the predicate holds; for menus and panels, which have no titles.
    [[nodiscard]] std::optional<AccessibleNode> window(const std::function<bool(const AccessibleNode&)>& isIt) const;
    /// What has the keyboard focus, as the program last said, without its children.
    [[nodiscard]] std::optional<AccessibleNode> focused() const;

    /// Makes the object do one of its actions, such as "Press"; false when it has no such action.
    [[nodiscard]] bool act(const AccessibleReference& reference, const std::string& action) const;

    /// Waits until the programs have reported every key that they have taken and have received the answers. At a
    /// program's end Qt does not free what it has no answer for, and the leak sanitizer would report it.
    void settle() const;

    /// Waits until the predicate holds; false at the deadline. Checks it after each event from a program, and at short
    /// intervals for changes without an event.
    [[nodiscard]] bool waitUntil(const std::function<bool()>& predicate, milliseconds budget = patience) const;

private slots:
    void takeEvent(const QDBusMessage& message);

private:
    [[nodiscard]] QDBusMessage call(const AccessibleReference& reference, const char* interface, const char* method,
                                    const QVariantList& arguments = {}) const;
    [[nodiscard]] std::vector<AccessibleReference> children(const AccessibleReference& reference) const;
    /// Without its children; nothing when the object is gone.
    [[nodiscard]] std::optional<AccessibleNode> read(const AccessibleReference& reference) const;
    /// Reads all that is shown in the node.
    void readChildren(AccessibleNode& node) const;
    [[nodiscard]] std::vector<AccessibleReference> topLevels() const;
    /// The ancestor that is next below the program; nothing when the object is gone.
    [[nodiscard]] std::optional<AccessibleReference> topLevelAround(AccessibleReference reference) const;
    [[nodiscard]] std::optional<AccessibleReference> parentOf(const AccessibleReference& reference) const;

    QString connectionName_;
    QDBusConnection connection_{QString()};
    std::optional<AccessibleReference> lastFocused_;
};

}  // namespace ferrowyn::x11test
