#include "platform/process/InterruptSignals.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace sweepwright::platform {

namespace {

constexpr std::array kSignals{SIGINT, SIGTERM};

// A handler may only do what is safe at any moment: it hands the number through a pipe.
std::atomic<int> handlerEnd{-1};

void onSignalArrived(int signal) {
    const int saved = errno;
    const auto number = static_cast<unsigned char>(signal);
    const int end = handlerEnd.load();
    if (end >= 0) static_cast<void>(!write(end, &number, 1));
    errno = saved;
}

}  // namespace

struct InterruptSignals::State {
    std::function<void(int)> onSignal;
    std::array<int, 2> pipe{-1, -1};
    std::array<struct sigaction, kSignals.size()> before{};
    struct sigaction pipeBefore{};
    std::thread listener;

    void listen() const {
        unsigned char number = 0;
        while (true) {
            const ssize_t got = read(pipe[0], &number, 1);
            if (got < 0 && errno == EINTR) continue;
            if (got <= 0 || number == 0) return;
            onSignal(number);
        }
    }
};

InterruptSignals::InterruptSignals(std::function<void(int)> onSignal)
    : state_(std::make_unique<State>()) {
    state_->onSignal = std::move(onSignal);
    struct sigaction ignore{};
    ignore.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &ignore, &state_->pipeBefore);
    if (::pipe(state_->pipe.data()) != 0) {
        state_->pipe = {-1, -1};
        return;
    }
    for (const int end : state_->pipe)
        fcntl(end, F_SETFD, FD_CLOEXEC);
    fcntl(state_->pipe[1], F_SETFL, O_NONBLOCK);
    handlerEnd = state_->pipe[1];
    state_->listener = std::thread([state = state_.get()] { state->listen(); });

    struct sigaction action{};
    action.sa_handler = onSignalArrived;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        sigaction(kSignals.at(i), nullptr, &state_->before.at(i));
        // Whoever started the program with a signal ignored (nohup, a script's "&") wants it so.
        if (state_->before.at(i).sa_handler == SIG_IGN) continue;
        sigaction(kSignals.at(i), &action, nullptr);
    }
}

InterruptSignals::~InterruptSignals() {
    sigaction(SIGPIPE, &state_->pipeBefore, nullptr);
    if (state_->pipe[0] < 0) return;
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        sigaction(kSignals.at(i), &state_->before.at(i), nullptr);
    }
    handlerEnd = -1;
    const unsigned char end = 0;
    fcntl(state_->pipe[1], F_SETFL, 0);
    static_cast<void>(!write(state_->pipe[1], &end, 1));
    state_->listener.join();
    for (const int descriptor : state_->pipe)
        close(descriptor);
}

}  // namespace sweepwright::platform
