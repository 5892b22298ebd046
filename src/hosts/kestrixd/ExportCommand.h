// kestrixd export: logged data become a CSV file.
#pragma once

namespace zr::service {

// argv[0] is the command's own name. Returns the exit status, after saying what was wrong.
int RunExport(int argc, char** argv);

}  // namespace zr::service
