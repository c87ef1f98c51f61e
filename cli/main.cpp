// sentrel-acl: show, plan, apply and delete ACL profiles and rules on many switches.
#include <cstdio>
#include <iostream>

#ifdef _WIN32
#include <io.h>
#define SENTREL_ISATTY(fd) _isatty(fd)
#else
#include <unistd.h>
#define SENTREL_ISATTY(fd) isatty(fd)
#endif

#include "cli/commands.h"

int main(int argc, char** argv) {
  // Progress is redrawn in place only on a terminal that takes escape sequences; a Windows
  // console gets the plain lines.
#ifdef _WIN32
  const bool terminal = false;
#else
  const bool terminal = SENTREL_ISATTY(2) != 0;
#endif
  return RunCli(argc, argv, std::cin, std::cout, std::cerr, terminal, SENTREL_ISATTY(0) != 0);
}
