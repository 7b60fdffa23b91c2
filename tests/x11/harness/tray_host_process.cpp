#include "tests/x11/harness/tray_host_process.h"

#include <stdexcept>
#include <vector>

namespace ferrowyn::x11test {

namespace {

/// One panel as wide as the screen, with nothing in it but the tray.
constexpr const char* panelConfiguration = R"(<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="dark-mode" type="bool" value="true"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="size" type="uint" value="28"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="systray">
      <property name="square-icons" type="bool" value="true"/>
    </property>
  </property>
</channel>
)";

constexpr const char* lxqtConfiguration = R"([General]
panels=panel1

[panel1]
alignment=-1
desktop=0
iconSize=22
lineCount=1
panelSize=32
plugins=statusnotifier
position=Top
width=100
width-percent=true

[statusnotifier]
type=statusnotifier
)";

std::vector<std::string> commandFor(const std::string& name, const PrivateXServer& server) {
    if (name == "xfce4-panel") {
        server.home().write(".config/xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml", panelConfiguration);
        return {"xfce4-panel", "--disable-wm-check", "--sm-client-disable"};
    }
    if (name == "lxqt-panel") {
        server.home().write("lxqt-panel.conf", lxqtConfiguration);
        return {"lxqt-panel", "--configfile", server.home().path() + "/lxqt-panel.conf"};
    }
    if (name == "trayer") {
        return {"trayer",      "--edge",        "bottom",   "--align",  "right",         "--width", "200",
                "--widthtype", "pixel",         "--height", "28",       "--SetDockType", "true",    "--tint",
                "0x224466",    "--transparent", "false",    "--expand", "false"};
    }
    throw std::runtime_error("no such tray: " + name);
}

}  // namespace

TrayHostProcess::TrayHostProcess(const PrivateXServer& server, const std::string& name, const std::string& busAddress) {
    ChildProcess::Options options;
    options.command = commandFor(name, server);
    options.environment = server.clientEnvironment();
    options.environment["DBUS_SESSION_BUS_ADDRESS"] = busAddress;
    process_ = std::make_unique<ChildProcess>(options);
}

}  // namespace ferrowyn::x11test
