#include "tests/x11/windows/session_manager.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <array>
#include <cstdlib>
#include <span>
#include <string_view>

namespace ferrowyn::x11test {

namespace {

SessionManager& managerOf(SmPointer self) {
    return *static_cast<SessionManager*>(self);
}

/// Every client on this machine may join during the test.
Bool admitAnybody(char* /*host*/) {
    return True;
}

}  // namespace

SessionManager::SessionManager() {
    std::array<char, 256> error{};
    const bool isReady =
        SmsInitialize("Test", "1", acceptClient, this, admitAnybody, static_cast<int>(error.size()), error.data()) !=
            0 &&
        IceListenForConnections(&listenerCount_, &listeners_, static_cast<int>(error.size()), error.data()) != 0;
    EXPECT_TRUE(isReady) << error.data();
    for (const auto listener : std::span(listeners_, static_cast<std::size_t>(listenerCount_))) {
        IceSetHostBasedAuthProc(listener, admitAnybody);
    }
    // The default one ends the process with the first client that goes.
    IceSetIOErrorHandler([](IceConn) {});
}

SessionManager::~SessionManager() {
    while (!connections_.empty()) {
        close(connections_.back());
    }
    if (listeners_ != nullptr) {
        IceFreeListenObjs(listenerCount_, listeners_);
    }
}

std::string SessionManager::address() const {
    char* const list = IceComposeNetworkIdList(listenerCount_, listeners_);
    std::string address = list != nullptr ? list : "";
    std::free(list);
    return address;
}

Status SessionManager::acceptClient(SmsConn accepted, SmPointer self, unsigned long* mask, SmsCallbacks* callbacks,
                                    char** /*failure*/) {
    managerOf(self).clients_.push_back(accepted);
    *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask |
            SmsSaveYourselfRequestProcMask | SmsSaveYourselfP2RequestProcMask | SmsSaveYourselfDoneProcMask |
            SmsCloseConnectionProcMask | SmsSetPropertiesProcMask | SmsDeletePropertiesProcMask |
            SmsGetPropertiesProcMask;
    *callbacks = {};
    callbacks->register_client = {[](SmsConn client, SmPointer, char* previousId) -> Status {
                                      std::free(previousId);
                                      char* const id = SmsGenerateClientID(client);
                                      SmsRegisterClientReply(client, id);
                                      std::free(id);
                                      SmsSaveYourself(client, SmSaveLocal, False, SmInteractStyleNone, False);
                                      return 1;
                                  },
                                  self};
    callbacks->interact_request = {[](SmsConn, SmPointer, int) {}, self};
    callbacks->interact_done = {[](SmsConn, SmPointer, Bool) {}, self};
    callbacks->save_yourself_request = {[](SmsConn, SmPointer, int, Bool, int, Bool, Bool) {}, self};
    callbacks->save_yourself_phase2_request = {[](SmsConn client, SmPointer) { SmsSaveYourselfPhase2(client); }, self};
    callbacks->save_yourself_done = {[](SmsConn client, SmPointer manager, Bool) {
                                         managerOf(manager).hasSaved_ = true;
                                         SmsSaveComplete(client);
                                     },
                                     self};
    callbacks->close_connection = {[](SmsConn, SmPointer, int count, char** reasons) { SmFreeReasons(count, reasons); },
                                   self};
    callbacks->set_properties = {[](SmsConn, SmPointer manager, int count, SmProp** properties) {
                                     managerOf(manager).takeProperties(count, properties);
                                 },
                                 self};
    callbacks->delete_properties = {[](SmsConn, SmPointer, int count, char** names) { SmFreeReasons(count, names); },
                                    self};
    callbacks->get_properties = {[](SmsConn client, SmPointer) { SmsReturnProperties(client, 0, nullptr); }, self};
    return 1;
}

void SessionManager::takeProperties(int count, SmProp** properties) {
    for (auto* const property : std::span(properties, static_cast<std::size_t>(count))) {
        if (std::string_view(property->name) == SmRestartStyleHint && property->num_vals == 1) {
            restartStyle_ = *static_cast<const unsigned char*>(property->vals[0].value);
        }
        SmFreeProperty(property);
    }
    std::free(properties);
}

bool SessionManager::waitForSaving(milliseconds budget) {
    const Deadline deadline(budget);
    while (!hasSaved_ && !deadline.hasPassed()) {
        std::vector<pollfd> readable;
        for (int listener = 0; listener < listenerCount_; ++listener) {
            readable.push_back({IceGetListenConnectionNumber(listeners_[listener]), POLLIN, 0});
        }
        const auto connections = connections_;
        for (const auto connection : connections) {
            readable.push_back({IceConnectionNumber(connection), POLLIN, 0});
        }
        poll(readable.data(), readable.size(), deadline.remainingMilliseconds());
        for (std::size_t index = 0; index < readable.size(); ++index) {
            const auto first = static_cast<std::size_t>(listenerCount_);
            if (readable[index].revents == 0) {
                continue;
            }
            index < first ? accept(listeners_[index]) : serve(connections[index - first]);
        }
    }
    return hasSaved_;
}

void SessionManager::accept(IceListenObj listener) {
    IceAcceptStatus status = IceAcceptFailure;
    if (auto* const connection = IceAcceptConnection(listener, &status)) {
        connections_.push_back(connection);
    }
}

void SessionManager::serve(IceConn connection) {
    if (IceProcessMessages(connection, nullptr, nullptr) == IceProcessMessagesIOError) {
        close(connection);
    }
}

void SessionManager::close(IceConn connection) {
    std::erase_if(clients_, [&](SmsConn client) {
        const bool isItsOwn = SmsGetIceConnection(client) == connection;
        if (isItsOwn) {
            SmsCleanUp(client);
        }
        return isItsOwn;
    });
    IceSetShutdownNegotiation(connection, False);
    IceCloseConnection(connection);
    std::erase(connections_, connection);
}

}  // namespace ferrowyn::x11test
