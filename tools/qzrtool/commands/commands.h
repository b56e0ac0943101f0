// The commands of the program, each of which does its work on the options and arguments of an invocation.
#pragma once

#include "cli/command_line.h"

#include <span>

namespace tool {

std::span<const Command> commands();

ExitCode run_show(Invocation& invocation);
ExitCode run_convert(Invocation& invocation);
ExitCode run_diff(Invocation& invocation);
ExitCode run_get(Invocation& invocation);
ExitCode run_set(Invocation& invocation);
ExitCode run_rm(Invocation& invocation);
ExitCode run_storage_ls(Invocation& invocation);
ExitCode run_storage_cat(Invocation& invocation);
ExitCode run_storage_check(Invocation& invocation);
ExitCode run_storage_put(Invocation& invocation);
ExitCode run_storage_rm(Invocation& invocation);
ExitCode run_storage_pack(Invocation& invocation);
ExitCode run_storage_extract(Invocation& invocation);
ExitCode run_file_info(Invocation& invocation);
ExitCode run_file_probe(Invocation& invocation);
ExitCode run_file_lock_test(Invocation& invocation);
ExitCode run_file_get(Invocation& invocation);
ExitCode run_file_put(Invocation& invocation);
ExitCode run_file_ls(Invocation& invocation);
ExitCode run_file_rm(Invocation& invocation);
ExitCode run_file_mkdir(Invocation& invocation);
ExitCode run_recover(Invocation& invocation);
ExitCode run_wld_check(Invocation& invocation);
ExitCode run_wld_extract(Invocation& invocation);
ExitCode run_wld_missing(Invocation& invocation);
ExitCode run_wld_merge(Invocation& invocation);
ExitCode run_wld_stats(Invocation& invocation);
ExitCode run_wld_lookup(Invocation& invocation);
ExitCode run_wld_export(Invocation& invocation);
ExitCode run_wld_import(Invocation& invocation);
ExitCode run_help(Invocation& invocation);

} // namespace tool
