// MIT License. Operations on files and folders. Errors are those of support/files/error.h.
#pragma once

#include <string>

#include "support/files/filepath.h"

namespace memory {
class data;
}

namespace files {

// The folder for the user's application data. On POSIX $XDG_DATA_HOME, else $HOME/.local/share, created when missing.
// Throws err::runtime_error when there is no such folder.
filepath get_user_app_support_path();

// Shows http://`url` in the user's browser, without waiting for it; an empty text does nothing. Ignores failures.
void open_url(const std::string& url);

// Whether the name ends in ".lnk", in either case.
bool is_alias(const filepath& location);

// What the shell link at `location` points to; throws error::cannot_resolve_file. On Windows the calling thread has
// initialised COM; elsewhere there are no shell links to follow.
filepath resolve_file_path(const filepath& location);

// Whether `parent`, which may be a shell link, contains `name`. Never throws.
bool child_exists(const filepath& parent, const std::string& name);

// Creates an empty file that must not exist yet. Throws error::duplicate_name when a folder has the name, else
// error::file_path; both carry the full path as their name.
filepath create_file(const filepath& folder, const std::string& name);

// Creates a folder. Whatever already exists at that path is left alone, even a file. Throws
// error::cannot_create_folder.
filepath create_folder(const filepath& parent, const std::string& name);

// The folder of that name, created when missing. Throws error::folder_not_found when a file has the name, and what
// create_folder throws.
filepath get_or_create_folder(const filepath& parent, const std::string& name);

// The innermost folder of the path `relative`, whose separators are "/" or "\"; missing folders are created. Throws
// nothing: a failure goes to the debugger's output, and the result is an empty filepath.
filepath create_folder_path(const filepath& parent, const std::string& relative);

// Appends `bytes` to a file, which is created when missing, and closes it. Throws what hdd_file throws.
void append_to_file(const filepath& location, const memory::data& bytes);

}  // namespace files
