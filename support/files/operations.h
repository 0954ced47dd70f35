// MIT License. What the program does with files and folders. Errors are those of support/files/error.h.
#pragma once

#include <string>

#include "support/files/filepath.h"

namespace memory {
class data;
}

namespace files {

// The folder in which programs keep their data of this user. On POSIX $XDG_DATA_HOME, else $HOME/.local/share, made
// when it is missing. Throws err::runtime_error when there is none.
filepath get_user_app_support_path();

// Shows http://`url` in the user's browser, without waiting for it; an empty text does nothing. Tells no failure.
void open_url(const std::string& url);

// Whether the name ends in ".lnk", in either case.
bool is_alias(const filepath& location);

// What the shell link at `location` points to; throws error::cannot_resolve_file. On Windows the calling thread has
// initialised COM; elsewhere there are no shell links to follow.
filepath resolve_file_path(const filepath& location);

// Whether `name` lies in `parent`, which may be a shell link. Never throws.
bool child_exists(const filepath& parent, const std::string& name);

// Makes an empty file that wasn't there. Throws error::duplicate_name when a folder has the name, else
// error::file_path; both carry the full path as their name.
filepath create_file(const filepath& folder, const std::string& name);

// Makes a folder, or leaves what lies there, be it a file. Throws error::cannot_create_folder.
filepath create_folder(const filepath& parent, const std::string& name);

// The folder of that name, made when it is missing. Throws error::folder_not_found when a file has the name, and what
// create_folder throws.
filepath get_or_create_folder(const filepath& parent, const std::string& name);

// The last of the folders that `relative` names one below the other, between any of "/" and "\"; those missing are
// made. Throws nothing: a failure goes to the debugger's output, and the result is an empty filepath.
filepath create_folder_path(const filepath& parent, const std::string& relative);

// Adds `bytes` at the end of a file, which is made when it is missing, and closes it. Throws what hdd_file throws.
void append_to_file(const filepath& location, const memory::data& bytes);

}  // namespace files
