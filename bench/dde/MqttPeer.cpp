#include "MqttPeer.h"

#include <mosquitto.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <string>
#include <thread>

namespace zr::bench {

namespace {

constexpr int kTopics = 100;

int FreePort()
{
    const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    bind(fd, reinterpret_cast<const sockaddr*>(&address), size);
    getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size);
    close(fd);
    return ntohs(address.sin_port);
}

pid_t StartBroker(int port)
{
    const pid_t broker = fork();
    if (broker == 0) {
        const std::string text = std::to_string(port);
        std::freopen("/dev/null", "w", stderr);
        execlp("mosquitto", "mosquitto", "-p", text.c_str(), nullptr);
        execl("/usr/sbin/mosquitto", "mosquitto", "-p", text.c_str(), nullptr);
        _exit(127);
    }
    return broker;
}

bool ConnectTo(mosquitto* client, int port)
{
    for (int attempt = 0; attempt < 500; ++attempt) {
        if (mosquitto_connect(client, "127.0.0.1", port, 60) == MOSQ_ERR_SUCCESS) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

struct Received {
    std::atomic<int> count{0};
    std::atomic<bool> subscribed{false};
};

double Run(mosquitto* publisher, mosquitto* subscriber, Received& received, int messages)
{
    std::array<std::string, kTopics> topics;
    for (std::size_t i = 0; i < topics.size(); ++i) {
        topics[i] = "meter/v" + std::to_string(i);
    }
    mosquitto_loop_start(subscriber);
    mosquitto_loop_start(publisher);
    mosquitto_subscribe(subscriber, nullptr, "meter/#", 0);
    while (!received.subscribed) {
        std::this_thread::yield();
    }
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < messages; ++i) {
        // No more under way than the broker queues without dropping.
        while (i - received.count > 900) {
            std::this_thread::yield();
        }
        mosquitto_publish(publisher, nullptr, topics[static_cast<std::size_t>(i % kTopics)].c_str(), 8, "123.4567", 0,
                          false);
    }
    while (received.count < messages && std::chrono::steady_clock::now() - start < std::chrono::seconds(60)) {
        std::this_thread::yield();
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    mosquitto_disconnect(publisher);
    mosquitto_disconnect(subscriber);
    mosquitto_loop_stop(publisher, false);
    mosquitto_loop_stop(subscriber, false);
    return received.count / elapsed.count();
}

}  // namespace

double MqttMessagesPerSecond(int messages)
{
    const int port = FreePort();
    const pid_t broker = StartBroker(port);
    mosquitto_lib_init();
    Received received;
    mosquitto* publisher = mosquitto_new(nullptr, true, nullptr);
    mosquitto* subscriber = mosquitto_new(nullptr, true, &received);
    mosquitto_message_callback_set(
        subscriber, [](mosquitto*, void* user, const mosquitto_message*) { ++static_cast<Received*>(user)->count; });
    mosquitto_subscribe_callback_set(subscriber, [](mosquitto*, void* user, int, int, const int*) {
        static_cast<Received*>(user)->subscribed = true;
    });
    const double rate =
        ConnectTo(publisher, port) && ConnectTo(subscriber, port) ? Run(publisher, subscriber, received, messages) : 0;
    mosquitto_destroy(publisher);
    mosquitto_destroy(subscriber);
    mosquitto_lib_cleanup();
    kill(broker, SIGTERM);
    waitpid(broker, nullptr, 0);
    return rate;
}

}  // namespace zr::bench
