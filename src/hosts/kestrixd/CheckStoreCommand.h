// kestrixd check-store: whether a store is sound, and what is in it.
#pragma once

namespace zr::service {

// argv[0] is the command's own name. Returns the exit status, after saying what was wrong.
int RunCheckStore(int argc, char** argv);

}  // namespace zr::service
