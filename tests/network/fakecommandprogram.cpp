#include <cstdio>
#include <cstdlib>
#include <string>

/// The program behind FakeCommand, which names a folder in the environment. It prints the file
/// "output" there, or where there is none its arguments, each in brackets. It does what its caller
/// has to bear with: it writes to standard error too, goes on after its output is closed, and
/// fails.
int main(int argc, char **argv)
{
    const char *variable = std::getenv("VONETWORK_FAKE_COMMAND");
    const std::string folder = variable ? variable : ".";
    std::fputs("not to be read\n", stderr);
    if (std::FILE *output = std::fopen((folder + "/output").c_str(), "rb")) {
        for (int byte = std::fgetc(output); byte != EOF; byte = std::fgetc(output))
            std::putchar(byte);
        std::fclose(output);
    } else {
        for (int i = 1; i < argc; ++i)
            std::printf("[%s]", argv[i]);
    }
    std::fclose(stdout);
    if (std::FILE *ended = std::fopen((folder + "/ended").c_str(), "wb"))
        std::fclose(ended);
    return 3;
}
