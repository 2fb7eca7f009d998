#include <cstdio>
#include <new>

#include "hosts/zkey/audio_command.h"
#include "hosts/zkey/edit_command.h"
#include "hosts/zkey/failure.h"
#include "hosts/zkey/frame_command.h"
#include "hosts/zkey/help.h"
#include "hosts/zkey/job.h"
#include "hosts/zkey/pipe.h"
#include "hosts/zkey/progress.h"
#include "hosts/zkey/props_command.h"
#include "hosts/zkey/system.h"

namespace {

using zkey::ExitStatus;

ExitStatus Print(const std::string &text) {
    zkey::PrintOut(text);
    return zkey::kExitDone;
}

ExitStatus Run(const std::vector<std::string> &arguments) {
    if (arguments.empty()) {
        std::fputs(zkey::GeneralHelp().c_str(), stderr);
        return zkey::kExitUsage;
    }
    const std::string &first = arguments[0];
    if (first == "--help" || first == "-h" || first == "help") return Print(zkey::GeneralHelp());
    if (first == "--version") return Print(zkey::VersionText());
    if (first == "props") return zkey::RunPropsCommand({arguments.begin() + 1, arguments.end()});
    if (first == "detect") return zkey::RunDetectCommand({arguments.begin() + 1, arguments.end()});
    if (first == "edit") return zkey::RunEditCommand({arguments.begin() + 1, arguments.end()});
    if (first == "audio") return zkey::RunAudioCommand({arguments.begin() + 1, arguments.end()});
    if (first == "frame") return zkey::RunFrameCommand({arguments.begin() + 1, arguments.end()});
    if (first != "key") {
        const bool input = first == "-" || first.starts_with('-') || zkey::Exists(first);
        zkey::FailUsage(input ? "the command is missing: zkey key " + first + " ..."
                              : "unknown command \"" + first + "\"; zkey --help lists them");
    }
    const zkey::KeyCommand command = zkey::ParseKeyCommand({arguments.begin() + 1, arguments.end()});
    if (command.help) return Print(zkey::KeyHelp());
    zkey::WatchInterrupt();
    return zkey::RunKeyCommand(command);
}

}    // namespace

int main(int argc, char **argv) {
    zkey::SystemStart();
    try {
        return Run(zkey::Arguments(argc, argv));
    } catch (const zkey::Failure &failure) {
        zkey::Note(failure.what());
        return failure.Status();
    } catch (const std::bad_alloc &) {
        zkey::Note("out of memory");
        return zkey::kExitFailed;
    } catch (const std::exception &other) {
        zkey::Note(other.what());
        return zkey::kExitFailed;
    }
}
