#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <stdexcept>

#include "tests/platform/linux/temporary_folder.h"

namespace ferrowyn {

/// Private HTTPS servers, each with another kind of certificate, in one further process.
class HttpsServers {
public:
    HttpsServers() {
        process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process_.start(FERROWYN_PYTHON, {FERROWYN_HTTPS_SERVER, QString::fromStdString(folder_.path().string())});
        if (!process_.waitForReadyRead(60000)) {
            throw std::runtime_error("the HTTPS servers did not start");
        }
        ports_ = QJsonDocument::fromJson(process_.readLine()).object();
    }
    ~HttpsServers() {
        process_.closeWriteChannel();
        process_.waitForFinished();
    }
    HttpsServers(const HttpsServers&) = delete;
    HttpsServers& operator=(const HttpsServers&) = delete;

    /// The file with the authority that signed the good certificates.
    [[nodiscard]] std::string authority() const { return (folder_.path() / "ca.pem").string(); }
    /// A folder of trusted authorities as a system has one, with that one in it.
    [[nodiscard]] std::string store() const { return (folder_.path() / "store").string(); }
    /// "127.0.0.1:port" of the server with this kind of certificate, or "plain", or one of the proxies.
    [[nodiscard]] std::string host(const char* certificate = "good") const { return "127.0.0.1:" + port(certificate); }
    [[nodiscard]] std::string port(const char* certificate = "good") const {
        return std::to_string(ports_[certificate].toInt());
    }

private:
    TemporaryFolder folder_;
    QProcess process_;
    QJsonObject ports_;
};

}  // namespace ferrowyn
