// A program that misbehaves as told. Each argument is one action, carried out in order:
//   out:TEXT err:TEXT   prints TEXT ("\n" stands for a line end)
//   prompt:TEXT         prints TEXT and ": ", reads a line, prints "got [" line "]\n"
//   lines:COUNT         prints so many lines of 80 characters, line end included
//   sleep:MS            waits
//   hang                waits for ever
//   ignore-term         from now on SIGTERM and SIGHUP are ignored
//   signal:NUMBER       ends by that signal
//   exit:CODE           ends with that code
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <string>
#include <unistd.h>

static std::string unescaped(std::string text)
{
    for (size_t at = text.find("\\n"); at != std::string::npos; at = text.find("\\n", at))
        text.replace(at, 2, 1, '\n');
    return text;
}

static void prompt(const std::string &text)
{
    std::cout << text << ": " << std::flush;
    std::string line;
    std::getline(std::cin, line);
    std::cout << "\ngot [" << line << "]\n" << std::flush;
}

static void perform(const std::string &action, const std::string &value)
{
    if (action == "out")
        std::cout << unescaped(value) << std::flush;
    else if (action == "err")
        std::cerr << unescaped(value) << std::flush;
    else if (action == "prompt")
        prompt(value);
    else if (action == "lines")
        for (int i = std::stoi(value); i > 0; --i)
            std::cout << std::string(79, 'x') << '\n';
    else if (action == "sleep")
        usleep(useconds_t(std::stoi(value)) * 1000);
    else if (action == "hang")
        for (;;)
            pause();
    else if (action == "ignore-term") {
        std::signal(SIGTERM, SIG_IGN);
        std::signal(SIGHUP, SIG_IGN);
    } else if (action == "signal")
        std::raise(std::stoi(value));
    else if (action == "exit")
        std::exit(std::stoi(value));
    else {
        std::cerr << "faketool: unknown action " << action << '\n';
        std::exit(64);
    }
}

int main(int argc, char **argv)
{
    for (int i = 1; i < argc; ++i) {
        const std::string argument(argv[i]);
        const size_t colon = argument.find(':');
        perform(argument.substr(0, colon),
                colon == std::string::npos ? std::string() : argument.substr(colon + 1));
    }
    return 0;
}
