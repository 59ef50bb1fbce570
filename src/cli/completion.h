// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QStringList>

namespace CLI
{
class App;
}

namespace plexa
{

/// A word that can stand at the cursor.
struct Completion {
    QString text;
    QString description; ///< or empty
};

struct Completions {
    enum class Paths { None, Files, Folders };
    Paths paths = Paths::None; ///< the shell completes paths itself
    QList<Completion> words;
};

/// What the last one of the words after the program's name can become: commands, options, fields and their
/// values, tokens in braces, names of presets in the named files or the user's own. Ignores the letter case.
Completions completionsOf(const CLI::App &program, const QStringList &words);

/// Prints "none", "files" or "folders", then a line "WORD<tab>DESCRIPTION" for each word: for the scripts of
/// the shells.
void printCompletions(const Completions &completions);

} // namespace plexa
