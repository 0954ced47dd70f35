// MIT License. The folder of the plug-in's log files.
#pragma once

// Points the process's logbook at the folder of this plug-in in the user's application data, making what is missing of
// it: errors go to a file there from now on. A folder that cannot be had leaves the logbook as it is; when the user has
// no application data at all, that is logged.
void log_to_application_data();
