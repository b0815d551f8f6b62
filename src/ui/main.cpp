// SPDX-License-Identifier: GPL-3.0-or-later
#include "Application.h"

int main(int argc, char* argv[]) {
    return vorlane::Application::run(argc, argv);
}
