#pragma once

/// What stands in for the shell on a platform without one.

/// Runs nothing, writes nothing, gives 0.
int perform_shell_command_and_get_result(const char* command, char* output, int outputSize);
