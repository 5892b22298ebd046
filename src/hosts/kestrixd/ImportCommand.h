// kestrixd import: the values of a CSV file become logged data.
#pragma once

namespace zr::service {

// argv[0] is the command's own name. Returns the exit status, after saying what was wrong.
int RunImport(int argc, char** argv);

}  // namespace zr::service
