#include "app/Shell.h"

int main(int argc, char** argv) {
    return harbrook::runShell(harbrook::makePlatform(argc, argv));
}
