#pragma once

#include "words.h"

#include <string_view>

/// One of the tools: its name, what its usage says, and what it does with its words.
struct Tool
{
    std::string_view name;
    std::string_view usage;
    void (*run)(Words &words);
};

extern const Tool RPMSIGN_EXTERNAL;
extern const Tool CUSTOMER_SIGN;
extern const Tool NXVCERT_CLI;
