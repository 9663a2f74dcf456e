#include "cli/run.h"

int main(int count, char** arguments) {
    return quorvane::cli::Run({arguments + 1, arguments + count});
}
