#pragma once

#include "own-network/OwnNetwork.h"

#include <arpa/inet.h>
#include <array>
#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <mutex>
#include <netinet/in.h>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

/// The number of open files and sockets of the process.
inline std::size_t openDescriptors() {
    const std::filesystem::directory_iterator folder("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(folder), end(folder)));
}

/// The behaviour of a web service towards its clients.
struct Behaviour {
    enum class Kind : std::uint8_t {
        answers,      ///< reads the request, sends the bytes, closes
        drips,        ///< the same, one byte at a time
        answersLate,  ///< the same, after `pause`
        keepsSilent,  ///< reads the request and waits until the client has gone
        hangsUp,      ///< closes without reading anything
        breaksOff,    ///< reads a part of the request and closes, which resets the connection
        doesNotListen ///< connections are refused
    };
    Kind kind = Kind::answers;
    std::string bytes;
    std::chrono::milliseconds pause{0};
};

/// The web services for the public address, on port 80 of their addresses. Each has a thread.
class WebServices {
public:
    explicit WebServices(const std::map<int, Behaviour>& behaviours) {
        if (::pipe(stop_.data()) != 0) ADD_FAILURE() << "no pipe";
        for (const auto& [number, behaviour] : behaviours)
            if (behaviour.kind != Behaviour::Kind::doesNotListen) start(number, behaviour);
        own_network::setServices(own_network::Services::known);
    }
    /// Makes all five services behave alike.
    explicit WebServices(const Behaviour& behaviour)
        : WebServices({{2, behaviour}, {5, behaviour}, {6, behaviour}, {8, behaviour}, {9, behaviour}}) {}
    WebServices(const WebServices&) = delete;
    WebServices& operator=(const WebServices&) = delete;
    ~WebServices() {
        own_network::setServices(own_network::Services::unknown);
        ::close(stop_[1]);
        for (std::thread& thread : threads_)
            thread.join();
        for (const int listener : listeners_)
            ::close(listener);
        ::close(stop_[0]);
    }

    /// The numbers of the services in the order of their clients.
    std::vector<int> clients() {
        const std::lock_guard lock(mutex_);
        return clients_;
    }
    /// The last request that was read.
    std::string lastRequest() {
        const std::lock_guard lock(mutex_);
        return lastRequest_;
    }

private:
    void start(int number, const Behaviour& behaviour) {
        const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
        if (listener < 0) {
            ADD_FAILURE() << "no socket";
            return;
        }
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(80);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK - 1 + static_cast<in_addr_t>(number));
        EXPECT_EQ(::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(::listen(listener, 64), 0);
        listeners_.push_back(listener);
        threads_.emplace_back([this, listener, number, behaviour] {
            while (waitFor(listener)) {
                const int client = ::accept(listener, nullptr, nullptr);
                if (client < 0) continue;
                {
                    const std::lock_guard lock(mutex_);
                    clients_.push_back(number);
                }
                serve(client, behaviour);
                ::close(client);
            }
        });
    }

    /// Waits for input; false after the time or when the services stop.
    bool waitFor(int descriptor, std::chrono::milliseconds time = std::chrono::hours{1}) const {
        std::array<pollfd, 2> polled{{{descriptor, POLLIN, 0}, {stop_[0], POLLIN, 0}}};
        const nfds_t first = descriptor < 0 ? 1 : 0;
        const int count =
            ::poll(polled.data() + first, polled.size() - first, static_cast<int>(time.count()));
        return count > 0 && polled[1].revents == 0;
    }

    std::string requestOf(int client) const {
        std::string request;
        std::array<char, 256> chunk{};
        while (!request.ends_with("\r\n\r\n") && waitFor(client)) {
            const ssize_t size = ::recv(client, chunk.data(), chunk.size(), 0);
            if (size <= 0) break;
            request.append(chunk.data(), static_cast<std::size_t>(size));
        }
        return request;
    }

    void serve(int client, const Behaviour& behaviour) {
        using enum Behaviour::Kind;
        if (behaviour.kind == hangsUp) return;
        if (behaviour.kind == breaksOff) {
            waitFor(client);
            std::array<char, 1> some{};
            ::recv(client, some.data(), some.size(), 0);
            return;
        }
        std::string request = requestOf(client);
        {
            const std::lock_guard lock(mutex_);
            lastRequest_ = std::move(request);
        }
        if (behaviour.kind == keepsSilent) waitFor(client);
        if (behaviour.kind == answersLate) waitFor(-1, behaviour.pause);
        constexpr std::chrono::milliseconds drip{20};
        const std::size_t step = behaviour.kind == drips ? 1 : behaviour.bytes.size();
        for (std::size_t at = 0; at < behaviour.bytes.size(); at += step) {
            if (::send(client, behaviour.bytes.data() + at, step, MSG_NOSIGNAL) < 0) return;
            if (behaviour.kind == drips) waitFor(-1, drip);
        }
    }

    std::array<int, 2> stop_{};
    std::vector<int> listeners_;
    std::vector<std::thread> threads_;
    std::mutex mutex_;
    std::vector<int> clients_;
    std::string lastRequest_;
};
