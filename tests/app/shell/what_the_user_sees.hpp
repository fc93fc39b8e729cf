#pragma once

#include "app/shell_controller.hpp"
#include "app/status/status_popup.hpp"
#include "protocol/curl/curl_protocol.hpp"
#include "protocol/protocol_factory.hpp"

#include <QApplication>
#include <QEvent>
#include <QLabel>
#include <QStringList>

#include <memory>

namespace perchftp::test {

// Records what the user is shown while the controller works, in order: the popup's message when
// the popup appears and at the start of every blocking session call, and the banner's text at
// the same moments. What the popup says during a call is what the user reads while waiting.
//
// Sessions are made by the real libcurl adapters, each wrapped in a witness that takes a look
// before passing the call on. Only one recorder may exist at a time.
class WhatTheUserSees : public QObject {
public:
    explicit WhatTheUserSees(app::PerchFtpShellController& controller)
        : controller_(controller)
    {
        current_ = this;
        qApp->installEventFilter(this);
        protocol::ensureDefaultProtocolAdapters(); // so that a first create() does not undo the witnesses
        installWitnesses();
        forget();
    }
    ~WhatTheUserSees() override
    {
        if (current_ == this) {
            protocol::curl::registerCurlProtocolAdapters();
            current_ = nullptr;
        }
    }
    WhatTheUserSees(WhatTheUserSees const&) = delete;
    WhatTheUserSees& operator=(WhatTheUserSees const&) = delete;

    // What was seen so far, ending with what is shown now.
    QStringList const& popupMessages()
    {
        look();
        return popupMessages_;
    }
    QStringList const& bannerTexts()
    {
        look();
        return bannerTexts_;
    }
    // Starts a new record; the banner's present text does not count as seen.
    void forget()
    {
        popupMessages_.clear();
        bannerTexts_.clear();
        bannerBaseline_ = bannerText();
    }

    void look()
    {
        if (QLabel* message = controller_.statusPopupMessage()) {
            append(popupMessages_, message->text(), QString());
        }
        append(bannerTexts_, bannerText(), bannerBaseline_);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Show && watched == controller_.statusPopupWindow()) {
            look();
        }
        return false;
    }

private:
    class WitnessedSession;

    QString bannerText() const { return controller_.statusLabel() ? controller_.statusLabel()->text() : QString(); }

    static void append(QStringList& texts, QString const& text, QString const& baseline)
    {
        QString const& last = texts.isEmpty() ? baseline : texts.back();
        if (!text.isEmpty() && text != last) {
            texts.push_back(text);
        }
    }

    static void installWitnesses()
    {
        protocol::ProtocolFactory::registerProtocol("ftp", [] { return witnessed("ftp"); });
        protocol::ProtocolFactory::registerProtocol("ftps", [] { return witnessed("ftps"); });
        protocol::ProtocolFactory::registerProtocol("sftp", [] { return witnessed("sftp"); });
    }

    static protocol::IRemoteSession* witnessed(char const* name);

    static inline WhatTheUserSees* current_ = nullptr;
    app::PerchFtpShellController& controller_;
    QStringList popupMessages_;
    QStringList bannerTexts_;
    QString bannerBaseline_;
};

class WhatTheUserSees::WitnessedSession final : public protocol::IRemoteSession {
public:
    explicit WitnessedSession(protocol::IRemoteSession* real)
        : real_(real)
    {
    }

    protocol::SessionResult connect(std::string const& host, int port, std::string const& user,
        std::string const& password) override
    {
        lookIfWatched();
        return real_->connect(host, port, user, password);
    }
    protocol::SessionResult disconnect() override
    {
        lookIfWatched();
        return real_->disconnect();
    }
    protocol::SessionResult list(std::string const& path, std::vector<protocol::RemoteEntry>& entries) override
    {
        lookIfWatched();
        return real_->list(path, entries);
    }
    protocol::SessionResult upload(protocol::TransferParams const& params, protocol::TransferCallback callback) override
    {
        lookIfWatched();
        return real_->upload(params, std::move(callback));
    }
    protocol::SessionResult download(protocol::TransferParams const& params, protocol::TransferCallback callback) override
    {
        lookIfWatched();
        return real_->download(params, std::move(callback));
    }
    protocol::SessionResult rename(std::string const& from, std::string const& to) override
    {
        lookIfWatched();
        return real_->rename(from, to);
    }
    protocol::SessionResult remove(std::string const& path) override
    {
        lookIfWatched();
        return real_->remove(path);
    }
    protocol::SessionResult mkdir(std::string const& path) override
    {
        lookIfWatched();
        return real_->mkdir(path);
    }
    protocol::SessionResult chmod(std::string const& path, int mode) override
    {
        lookIfWatched();
        return real_->chmod(path, mode);
    }
    bool isConnected() const override { return real_->isConnected(); }

private:
    // A session may outlive its recorder: the controller's teardown disconnects it.
    static void lookIfWatched()
    {
        if (current_) {
            current_->look();
        }
    }

    std::unique_ptr<protocol::IRemoteSession> real_;
};

// The real adapter is made by putting the built-in makers back for a moment.
inline protocol::IRemoteSession* WhatTheUserSees::witnessed(char const* name)
{
    protocol::curl::registerCurlProtocolAdapters();
    protocol::IRemoteSession* real = protocol::ProtocolFactory::create(name);
    installWitnesses();
    current_->look();
    return real ? new WitnessedSession(real) : nullptr;
}

} // namespace perchftp::test
