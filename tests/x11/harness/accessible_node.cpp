#include "tests/x11/harness/accessible_node.h"

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

}  // namespace ferrowyn::x11test
