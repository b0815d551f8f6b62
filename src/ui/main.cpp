#include "Application.h"

int main(int argc, char* argv[]) {
    return vorlane::Application::run(argc, argv);
}
