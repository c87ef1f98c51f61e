// Stand-in for a web browser: appends the command line it was started with to the file
// named by SENTREL_FAKE_BROWSER_LOG, then exits.
#include <windows.h>

#include <cstdio>

int main() {
    char path[MAX_PATH] = {};
    if (GetEnvironmentVariableA("SENTREL_FAKE_BROWSER_LOG", path, MAX_PATH) == 0) return 1;
    FILE* f = fopen(path, "ab");
    if (!f) return 2;
    fprintf(f, "%s\n", GetCommandLineA());
    fclose(f);
    return 0;
}
