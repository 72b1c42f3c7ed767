#include "interruption.h"

#include <atomic>
#include <csignal>
#include <initializer_list>

static std::atomic<int> s_signal = 0;

static void handleSignals(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler; // without SA_RESTART: nothing is waited for any longer
    for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM})
        sigaction(number, &action, nullptr);
}

Interruption::Interruption()
{
    handleSignals([](int number) { s_signal = number; });
}

Interruption::~Interruption()
{
    handleSignals(SIG_DFL);
}

void Interruption::check()
{
    if (s_signal != 0)
        throw Interrupted{s_signal};
}

bool Interruption::isDue()
{
    return s_signal != 0;
}
