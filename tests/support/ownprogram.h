#pragma once

/// Runs the current test function, or its current row, in a program of its own, and fails when that
/// does. False in that program, where the test is to go on. For what cannot be undone, such as that
/// the IDE closes.
bool ranInOwnProgram();
