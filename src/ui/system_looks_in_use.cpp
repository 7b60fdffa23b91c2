#include "ui/system_looks_in_use.h"

namespace ferrowyn {

namespace {

const SystemLooks* looksInUse = nullptr;

}  // namespace

SystemLooksInUse::SystemLooksInUse(const SystemLooks& looks) {
    looksInUse = &looks;
}

SystemLooksInUse::~SystemLooksInUse() {
    looksInUse = nullptr;
}

const SystemLooks* SystemLooksInUse::current() {
    return looksInUse;
}

}  // namespace ferrowyn
