# Packages by purpose, Debian's first; sourced by the two commands.

# What compiles and links the program.
build_packages=(
  build-essential ca-certificates ccache cmake lld ninja-build pkg-config
  libcurl4-openssl-dev libfmt-dev libicu-dev libsystemd-dev nlohmann-json3-dev qt6-base-dev qt6-svg-dev libgl-dev
  libxcb1-dev libxcb-damage0-dev libxcb-ewmh-dev libxcb-icccm4-dev libxcb-image0-dev libxcb-randr0-dev
  libxcb-render0-dev libxcb-res0-dev libxcb-screensaver0-dev libxcb-shape0-dev libxcb-shm0-dev libxcb-sync-dev libxcb-xfixes0-dev
  libxcb-xinerama0-dev libxcb-xinput-dev libxcb-xkb-dev libxcb-xtest0-dev libxkbcommon-dev libxkbcommon-x11-dev
)

# What the program finds on any desktop and a bare machine lacks.
runtime_packages=(
  adwaita-icon-theme ca-certificates hicolor-icon-theme libqt6svg6 qt6-qpa-plugins
  fonts-dejavu-core fonts-inter fonts-noto-cjk fonts-noto-color-emoji fonts-noto-core
)

# The private desktop that ./run makes where there is no display.
demo_packages=(
  dbus dbus-bin dbus-daemon mousepad openbox pcmanfm trayer x11-apps xterm xvfb
)

# The private desktops of the tests.
test_packages=(
  appstream at-spi2-core desktop-file-utils dwm libbenchmark-dev libgmock-dev libglib2.0-bin libgtest-dev libsm-dev openssl python3
  dbus dbus-bin dbus-daemon dex fcitx5 fcitx5-hangul fonts-dejavu-core i3-wm i3lock icewm kwin-x11 lxqt-panel metacity mutter openbox picom trayer
  xfce4-panel xfwm4 xfconf
  wmaker x11-utils x11-xkb-utils x11-xserver-utils xinput xsecurelock xserver-xephyr xsettingsd xterm xvfb xkb-data
  clang-14 libc++-16-dev llvm-14 musl-dev
)

# The further checks of ./test --full.
full_packages=(clang-16 clang-format-14 clang-tidy-16)

# Homebrew's formulae on a Mac: what compiles, links and draws the icon, and what the tests need.
mac_packages=(ccache cmake fmt googletest icu4c librsvg ninja nlohmann-json pkgconf qt)
