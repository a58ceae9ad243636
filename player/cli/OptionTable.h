#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>
#include <string>
#include <vector>

/// Helpers to declare options. Help, manual page and completions are made from what is declared.
namespace krl::player {

/// An option for a file or folder.
CLI::Option* addPath(CLI::App& app, const char* name, std::filesystem::path& target, const char* type,
                     const char* meaning);

/// One or more positional files or folders, or an option that can be repeated with one value each.
CLI::Option* addPaths(CLI::App& app, const char* name, std::vector<std::filesystem::path>& target,
                      const char* type, const char* meaning);

/// An option that can be repeated, with one text each.
CLI::Option* addTexts(CLI::App& app, const char* name, std::vector<std::string>& target, const char* type,
                      const char* meaning);

/// An option that takes one of `choices`, written `a|b`.
CLI::Option* addChoice(CLI::App& app, const char* name, std::string& target, const char* choices,
                       const char* meaning);

/// Lets the settings file and the environment give the option; of several values, the last counts.
CLI::Option* settable(CLI::Option* option);

/// `--jobs`.
void addJobs(CLI::App& app, unsigned& jobs);

/// An option for an amount of memory, `500M` or `4G`.
CLI::Option* addMemory(CLI::App& app, const char* name, uint64_t& bytes, const char* meaning);

/// `--max-pixels`.
void addMaxPixels(CLI::App& app, int64_t& pixels);

/// `--timeout`.
void addTimeout(CLI::App& app, double& seconds);

struct SessionOptions;
/// The options of everything that runs effects. `threads` keeps a word that `session` is set from.
void addSession(CLI::App& app, SessionOptions& session, std::string& threads);

struct ApplyOptions;
/// How `apply` turns, crops, resizes, converts and packs what it writes.
void addDeliveryOptions(CLI::App& app, ApplyOptions& options);
/// What `apply` takes.
void addApplyOptions(CLI::App& app, ApplyOptions& options);

}  // namespace krl::player
