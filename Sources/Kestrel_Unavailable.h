#pragma once

/// The replacement for the shell on a platform without one.

/// Runs nothing, writes nothing and returns 0.
int perform_shell_command_and_get_result(const char* command, char* output, int outputSize);
