#include "platform/gtk/foundation/Thread.h"

#include <pthread.h>

#include <csignal>
#include <thread>
#include <utility>

namespace harbrook::gtk {

namespace {

/// Blocks every signal for this thread and for those that it makes.
class SignalsBlocked {
public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &previous_);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &previous_, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t previous_{};
};

} // namespace

void startThread(const char* name, std::function<void()> body) {
    const SignalsBlocked blocked;
    std::thread thread(std::move(body));
    pthread_setname_np(thread.native_handle(), name);
    thread.detach();
}

} // namespace harbrook::gtk
