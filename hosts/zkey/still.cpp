#include "hosts/zkey/still.h"

#include <cmath>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/padding.h"
#include "hosts/zkey/text.h"

namespace zkey {
namespace {

/// Seconds, or hours, minutes and seconds between colons.
double ParseTime(const std::string &text) {
    double seconds = 0;
    for (std::size_t from = 0; from <= text.size();) {
        const std::size_t end = std::min(text.find(':', from), text.size());
        double part = 0;
        if (!ParseReal(text.substr(from, end - from), part)) {
            FailUsage("--at: \"" + text + "\" is no time: give seconds, as 12.5, or 1:02:03.5");
        }
        seconds = seconds * 60 + part;
        from = end + 1;
    }
    return seconds;
}

int64_t NumberOf(const StillChoice &choice, const SourceInfo &info) {
    if (choice.frame) return *choice.frame;
    const double number = std::floor(choice.at.value_or(0) * info.rate.Value() + 1e-6);
    if (number > 1e9) FailUsage("--at: there is no clip of that length");
    return static_cast<int64_t>(number);
}

[[noreturn]] void FailNoPicture(const StillChoice &choice, int64_t number) {
    Fail(choice.input + (number == 0 ? " holds no picture" : " has no picture number " + std::to_string(number)));
}

}    // namespace

bool TakeStillOption(const std::string &name, const std::string &value, StillChoice &choice) {
    if (name == "--at") {
        choice.at = ParseTime(value);
    } else if (name == "--frame") {
        int32_t number = 0;
        if (!ParseWhole(value, number) || number < 0) FailUsage("--frame: \"" + value + "\" is no number of a picture");
        choice.frame = number;
    } else if (name == "--raw") {
        choice.raw = ParseRawSpec(value);
    } else {
        return false;
    }
    if (choice.at && choice.frame) FailUsage("--at and --frame exclude each other");
    return true;
}

Still ReadStill(Keyer &keyer, const StillChoice &choice) {
    KeyCommand command;
    command.input = choice.input;
    command.raw = choice.raw;
    command.audio = false;
    const std::unique_ptr<MediaReader> reader = OpenReader(command);
    Still still;
    still.info = reader->Info();
    RequireFits(choice.input, still.info.width, still.info.height);
    const int64_t number = NumberOf(choice, still.info);
    if (still.info.still && number > 0) FailNoPicture(choice, number);
    Arrival arrival;
    const bool jumped = number > 0 && reader->JumpTo(number);
    for (int64_t passed = jumped ? number : 0; passed <= number; ++passed) {
        if (!reader->Next(arrival)) FailNoPicture(choice, number);
    }
    const SourceInfo &info = still.info;
    const PictureSize size = PaddedSize(info.width, info.height, 1, IsInterlaced(arrival.scan), arrival.fcc);
    const Z_VID_PROPS props = DescribeFrame(arrival.fcc, size.width, size.height, arrival.scan, info.rate.Value());
    uint8_t *pixels = nullptr;
    still.frame = keyer.NewFrame(props, pixels);
    reader->Store(pixels, props);
    RepeatEdges(pixels, props, info.width, info.height);
    still.info.still = true;
    return still;
}

void WriteStill(Keyer &keyer, const std::string &path, const ImageView &keyed, Finish finish, const std::string &background,
                const SourceInfo &info) {
    if (finish == Finish::Straight) finish = NaturalAlpha(path, "");
    std::unique_ptr<Background> behind;
    if (finish == Finish::Over) behind = OpenBackground(background, keyed.width, keyed.height, keyer);
    const std::unique_ptr<MediaWriter> writer = OpenWriter({path, "", "", finish, true, info});
    if (finish == Finish::Premultiplied) {
        writer->Write(keyed, 0);
    } else {
        Image finished;
        FinishPicture(finish, keyed, behind ? behind->At(0) : ImageView{}, finished);
        writer->Write(finished.View(), 0);
    }
    writer->Close();
}

}    // namespace zkey
