#include "tests/x11/harness/accessibility_client.h"

#include <QDBusArgument>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <algorithm>
#include <stdexcept>

#include "tests/x11/harness/toolkit_wait.h"

namespace ferrowyn::x11test {
namespace {

void collect(const AccessibleNode& node, std::vector<std::string>& lines) {
    for (const auto& child : node.children) {
        const bool isForLayout = child.name.empty() && child.role == "filler";
        if (!isForLayout) {
            lines.push_back(child.line());
        }
        collect(child, lines);
    }
}

void write(std::ostream& stream, const AccessibleNode& node, int depth) {
    stream << std::string(static_cast<std::size_t>(2 * depth), ' ') << node.line() << " [" << node.place.x << ","
           << node.place.y << " " << node.place.width << "x" << node.place.height << "] states " << std::hex
           << node.states << std::dec;
    if (node.value) {
        stream << " value " << *node.value;
    }
    if (!node.text.empty()) {
        stream << " text \"" << node.text << '"';
    }
    stream << '\n';
    for (const auto& child : node.children) {
        write(stream, child, depth + 1);
    }
}

}  // namespace

const AccessibleNode* AccessibleNode::find(const std::function<bool(const AccessibleNode&)>& isIt) const {
    if (isIt(*this)) {
        return this;
    }
    for (const auto& child : children) {
        if (const auto* const found = child.find(isIt)) {
            return found;
        }
    }
    return nullptr;
}

const AccessibleNode* AccessibleNode::find(const std::string& wantedRole, const std::string& wantedName) const {
    return find([&](const AccessibleNode& node) { return node.role == wantedRole && node.name == wantedName; });
}

std::string AccessibleNode::line() const {
    return role + ": " + name + (description.empty() ? "" : " (" + description + ")");
}

std::vector<std::string> AccessibleNode::lines() const {
    std::vector<std::string> lines;
    collect(*this, lines);
    return lines;
}

std::ostream& operator<<(std::ostream& stream, const AccessibleReference& reference) {
    return stream << reference.service.toStdString() << reference.path.toStdString();
}

std::ostream& operator<<(std::ostream& stream, const AccessibleNode& node) {
    write(stream, node, 0);
    return stream;
}

namespace {

constexpr const char* accessible = "org.a11y.atspi.Accessible";
constexpr const char* component = "org.a11y.atspi.Component";
constexpr const char* actionInterface = "org.a11y.atspi.Action";
constexpr const char* valueInterface = "org.a11y.atspi.Value";
constexpr const char* textInterface = "org.a11y.atspi.Text";
constexpr const char* properties = "org.freedesktop.DBus.Properties";
constexpr const char* registry = "org.a11y.atspi.Registry";
constexpr const char* rootPath = "/org/a11y/atspi/accessible/root";
constexpr int answerPatience = 30000;

QDBusMessage message(const AccessibleReference& reference, const char* interface, const char* method,
                     const QVariantList& arguments = {}) {
    auto made = QDBusMessage::createMethodCall(reference.service, reference.path, interface, method);
    made.setArguments(arguments);
    return made;
}

std::string textProperty(const QDBusMessage& reply) {
    const auto arguments = reply.arguments();
    return arguments.isEmpty() ? std::string()
                               : arguments.first().value<QDBusVariant>().variant().toString().toStdString();
}

TestDesktop::Place place(const QDBusMessage& reply) {
    TestDesktop::Place result;
    if (!reply.arguments().isEmpty()) {
        const auto argument = reply.arguments().first().value<QDBusArgument>();
        argument.beginStructure();
        argument >> result.x >> result.y >> result.width >> result.height;
        argument.endStructure();
    }
    return result;
}

std::uint64_t states(const QDBusMessage& reply) {
    QList<uint> words;
    if (!reply.arguments().isEmpty()) {
        reply.arguments().first().value<QDBusArgument>() >> words;
    }
    constexpr unsigned wordSize = 32;
    return words.size() == 2 ? words[0] | static_cast<std::uint64_t>(words[1]) << wordSize : 0;
}

AccessibleReference takeReference(const QDBusArgument& argument) {
    QString service;
    QDBusObjectPath path;
    argument.beginStructure();
    argument >> service >> path;
    argument.endStructure();
    return {service, path.path()};
}

std::vector<AccessibleReference> references(const QDBusMessage& reply) {
    std::vector<AccessibleReference> result;
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
        return result;
    }
    const auto argument = reply.arguments().first().value<QDBusArgument>();
    argument.beginArray();
    while (!argument.atEnd()) {
        result.push_back(takeReference(argument));
    }
    argument.endArray();
    return result;
}

/// The address of the accessibility bus. The session bus starts that bus at this call, in the session bus's process
/// group, and it ends with that group.
QString busAddress(const PrivateBus& bus, const QString& connectionName) {
    auto session = QDBusConnection::connectToBus(QString::fromStdString(bus.address()), connectionName);
    const auto reply = session.call(message({"org.a11y.Bus", "/org/a11y/bus"}, "org.a11y.Bus", "GetAddress"),
                                    QDBus::Block, answerPatience);
    QDBusConnection::disconnectFromBus(connectionName);
    if (reply.type() != QDBusMessage::ReplyMessage) {
        throw std::runtime_error("no accessibility bus: " + reply.errorMessage().toStdString());
    }
    return reply.arguments().first().toString();
}

}  // namespace

AccessibilityClient::AccessibilityClient(const PrivateBus& bus)
    : connectionName_(QStringLiteral("accessibility of ") + QString::fromStdString(bus.address())) {
    connection_ = QDBusConnection::connectToBus(busAddress(bus, connectionName_ + ", session"), connectionName_);
    if (!connection_.isConnected()) {
        throw std::runtime_error("the accessibility bus takes no connection");
    }
    // Programs send only the events that a client has registered for.
    for (const char* const event : {"object:state-changed", "object:children-changed", "object:property-change",
                                    "window:create", "window:activate"}) {
        static_cast<void>(call({registry, "/org/a11y/atspi/registry"}, registry, "RegisterEvent", {QString(event)}));
    }
    for (const char* const events : {"org.a11y.atspi.Event.Object", "org.a11y.atspi.Event.Window"}) {
        connection_.connect({}, {}, events, {}, this, SLOT(takeEvent(QDBusMessage)));
    }
}

AccessibilityClient::~AccessibilityClient() {
    QDBusConnection::disconnectFromBus(connectionName_);
}

void AccessibilityClient::takeEvent(const QDBusMessage& message) {
    const auto arguments = message.arguments();
    const bool isFocus = message.member() == "StateChanged" && arguments.size() > 1 &&
                         arguments[0].toString() == "focused" && arguments[1].toInt() == 1;
    if (isFocus) {
        lastFocused_ = AccessibleReference{message.service(), message.path()};
    }
}

QDBusMessage AccessibilityClient::call(const AccessibleReference& reference, const char* interface, const char* method,
                                       const QVariantList& arguments) const {
    return connection_.call(message(reference, interface, method, arguments), QDBus::Block, answerPatience);
}

std::vector<AccessibleReference> AccessibilityClient::children(const AccessibleReference& reference) const {
    return references(call(reference, accessible, "GetChildren"));
}

std::vector<AccessibleReference> AccessibilityClient::topLevels() const {
    std::vector<AccessibleReference> windows;
    for (const auto& program : children({registry, rootPath})) {
        const auto ofProgram = children(program);
        windows.insert(windows.end(), ofProgram.begin(), ofProgram.end());
    }
    // Programs do not list open menus as children; a menu is found as the parent of the focused object.
    const auto focusedOne = lastFocused_ ? topLevelAround(*lastFocused_) : std::nullopt;
    if (focusedOne && std::ranges::find(windows, *focusedOne) == windows.end()) {
        windows.push_back(*focusedOne);
    }
    return windows;
}

std::optional<AccessibleReference> AccessibilityClient::topLevelAround(AccessibleReference reference) const {
    while (true) {
        const auto parent = parentOf(reference);
        if (!parent) {
            return std::nullopt;
        }
        if (parent->path == rootPath) {
            return reference;
        }
        reference = *parent;
    }
}

std::optional<AccessibleReference> AccessibilityClient::parentOf(const AccessibleReference& reference) const {
    const auto reply = call(reference, properties, "Get", {accessible, "Parent"});
    if (reply.type() != QDBusMessage::ReplyMessage) {
        return std::nullopt;
    }
    const auto argument = reply.arguments().first().value<QDBusVariant>().variant().value<QDBusArgument>();
    return takeReference(argument);
}

std::optional<AccessibleNode> AccessibilityClient::read(const AccessibleReference& reference) const {
    // All calls are sent before the first reply is awaited.
    const auto ask = [&](const char* interface, const char* method, const QVariantList& arguments = {}) {
        return connection_.asyncCall(message(reference, interface, method, arguments), answerPatience);
    };
    auto role = ask(accessible, "GetRoleName");
    auto name = ask(properties, "Get", {accessible, "Name"});
    auto description = ask(properties, "Get", {accessible, "Description"});
    auto state = ask(accessible, "GetState");
    constexpr uint onScreen = 0;
    auto extents = ask(component, "GetExtents", {onScreen});
    auto interfaces = ask(accessible, "GetInterfaces");
    for (auto* const pending : {&role, &name, &description, &state, &extents, &interfaces}) {
        pending->waitForFinished();
    }
    if (role.isError()) {
        return std::nullopt;
    }
    AccessibleNode node;
    node.reference = reference;
    node.role = role.reply().arguments().first().toString().toStdString();
    node.name = textProperty(name.reply());
    node.description = textProperty(description.reply());
    node.states = states(state.reply());
    node.place = place(extents.reply());
    const auto offers = interfaces.reply().arguments().value(0).toStringList();
    if (offers.contains(valueInterface)) {
        const auto answer = call(reference, properties, "Get", {valueInterface, "CurrentValue"});
        node.value = answer.arguments().value(0).value<QDBusVariant>().variant().toDouble();
    }
    if (offers.contains(textInterface)) {
        constexpr int toTheEnd = -1;
        node.text =
            call(reference, textInterface, "GetText", {0, toTheEnd}).arguments().value(0).toString().toStdString();
    }
    return node;
}

void AccessibilityClient::readChildren(AccessibleNode& node) const {
    for (const auto& reference : children(node.reference)) {
        if (auto child = read(reference); child && child->is(AccessibleNode::State::visible)) {
            readChildren(*child);
            node.children.push_back(*std::move(child));
        }
    }
}

std::optional<AccessibleNode> AccessibilityClient::window(
    const std::function<bool(const AccessibleNode&)>& isIt) const {
    for (const auto& reference : topLevels()) {
        auto node = read(reference);
        if (node && node->is(AccessibleNode::State::visible) && isIt(*node)) {
            readChildren(*node);
            return node;
        }
    }
    return std::nullopt;
}

std::optional<AccessibleNode> AccessibilityClient::window(const std::string& title) const {
    return window([&](const AccessibleNode& node) { return node.name == title; });
}

std::optional<AccessibleNode> AccessibilityClient::focused() const {
    return lastFocused_ ? read(*lastFocused_) : std::nullopt;
}

bool AccessibilityClient::act(const AccessibleReference& reference, const std::string& action) const {
    const auto reply = call(reference, actionInterface, "GetActions");
    if (reply.type() != QDBusMessage::ReplyMessage) {
        return false;
    }
    const auto argument = reply.arguments().first().value<QDBusArgument>();
    std::optional<int> wanted;
    argument.beginArray();
    for (int index = 0; !argument.atEnd(); ++index) {
        QString name;
        QString description;
        QString keys;
        argument.beginStructure();
        argument >> name >> description >> keys;
        argument.endStructure();
        if (name.toStdString() == action) {
            wanted = index;
        }
    }
    argument.endArray();
    return wanted && call(reference, actionInterface, "DoAction", {*wanted}).type() == QDBusMessage::ReplyMessage;
}

void AccessibilityClient::settle() const {
    // This call is answered by the program's main thread; some others are answered by another thread.
    const auto ask = [this](const AccessibleReference& whom) { static_cast<void>(call(whom, accessible, "GetRole")); };
    for (const auto& program : children({registry, rootPath})) {
        // Called twice: the program may get the first call together with a key, and answer before it handles the key.
        ask(program);
        ask(program);
        ask({registry, rootPath});
        ask(program);
    }
}

bool AccessibilityClient::waitUntil(const std::function<bool()>& predicate, milliseconds budget) const {
    // Not more often, because each check reads all shown objects of the programs.
    return runToolkitUntil(predicate, budget, milliseconds{20});
}

}  // namespace ferrowyn::x11test
