#include "hosts/zkey/frame_command.h"

#include <cmath>
#include <cstdio>
#include <optional>

#include "hosts/zkey/help.h"
#include "hosts/zkey/media.h"
#include "hosts/zkey/obstacles.h"
#include "hosts/zkey/options.h"
#include "hosts/zkey/padding.h"
#include "hosts/zkey/pipe.h"
#include "hosts/zkey/plugin_door.h"
#include "hosts/zkey/screen_guess.h"
#include "hosts/zkey/stored_frame.h"
#include "hosts/zkey/system.h"
#include "hosts/zkey/text.h"
#include "zchromakey/f_frame.h"

namespace zkey {
namespace {

using Words = std::vector<std::string>;

struct SaveRequest {
    KeyCommand key;
    std::vector<std::pair<std::string, std::string>> data;
    bool hold = false;
};

/// The options of this command; what is left over belongs to `zkey key`.
SaveRequest ParseSave(const Words &arguments) {
    SaveRequest r;
    Words rest{"--format", "raw"};
    Words names;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string &a = arguments[i];
        if (a == "--hold") {
            r.hold = true;
        } else if (a == "--data") {
            const std::string value = i + 1 < arguments.size() ? arguments[++i] : "";
            const std::size_t equals = value.find('=');
            if (equals == std::string::npos || equals == 0 || equals + 1 == value.size()) {
                FailUsage("--data: give NAME=TEXT, as C608=words");
            }
            r.data.emplace_back(value.substr(0, equals), value.substr(equals + 1));
        } else {
            rest.push_back(a);
        }
    }
    r.key = ParseKeyCommand(rest);
    const KeyCommand &k = r.key;
    if (k.help) return r;
    if (k.matte || !k.over.empty() || !k.codec.empty() || k.alpha != AlphaChoice::ByContainer || k.frames != 0 || k.exact ||
        k.garbage || !k.saveKey.empty()) {
        FailUsage("zkey frame save: only the options of the key, --raw, --prop, --data and --hold go with it");
    }
    if (WouldOverwrite(k.output, k.input)) FailUsage("the output would overwrite the input " + k.input);
    return r;
}

CHROMA_KEY_RAW KeyOf(const KeyCommand &command, Keyer &keyer, IZFrame *picture, const SourceInfo &info) {
    if (!command.keyFile.empty()) return keyer.LoadKey(command.keyFile, command.quiet);
    if (!command.key.NeedsScreen()) return BuildKey(command.key, {});
    const Ref<IZFrame> plain = keyer.Convert(picture);
    const auto guess =
        GuessScreen({Keyer::View(plain.get(), info.width, info.height)}, command.key.type.value_or(kDefaultKeyType));
    if (!guess || !guess->doubt.empty()) Fail("no key given, and the picture shows no screen; name its colour with --color");
    return BuildKey(command.key, guess->parts);
}

/// The picture at its own size, in memory of its own: the keyer's has room at the edges.
Ref<IZFrame> OwnPicture(IZFrame *keyed, const SourceInfo &info) {
    tagRECT whole{};
    whole.right = info.width;
    whole.bottom = info.height;
    Ref<IZFrame> cut;
    Ref<IZFrame> own;
    HRESULT status = keyed->FrameCut(0, &whole, cut.Put());
    if (SUCCEEDED(status)) status = cut->FrameClone(own.Put(), eZFC_Full, eZFCC_Default);
    if (FAILED(status)) Fail("cannot copy the keyed frame: " + StatusText(status));
    return own;
}

void Attach(IZFrame *frame, const SaveRequest &r, const SourceInfo &info, int64_t time) {
    constexpr double kUnits = 1e7;    // of a frame's time, in a second
    Z_TIME t{};
    t.rtStartTime = std::llround(static_cast<double>(time) * info.timeBase.Value() * kUnits);
    t.rtEndTime = t.rtStartTime + std::llround(kUnits / info.rate.Value());
    frame->FrameTimeSet(&t);
    Ref<IZFFrame> named;
    if (FAILED(frame->QueryInterface(ZIidOf<IZFFrame>(), named.PutVoid()))) Fail("the library's frames take no data");
    for (const auto &[name, text] : r.data) {
        const auto address = static_cast<int64_t>(reinterpret_cast<intptr_t>(text.data()));
        const HRESULT status = named->ZFDataSet(Counted(name).get(), static_cast<int32_t>(text.size()), address);
        if (FAILED(status)) Fail("--data " + name + ": " + StatusText(status));
    }
}

Ref<IZFrame> KeyFirst(const SaveRequest &r) {
    const std::unique_ptr<MediaReader> reader = OpenReader(r.key);
    const SourceInfo info = reader->Info();
    RequireFits(r.key.input, info.width, info.height);
    Keyer keyer;
    keyer.SetProp("output.thread", "false");
    keyer.SetProp("process.threads", "1");
    for (const auto &p : r.key.props) keyer.SetProp(p.first, p.second);
    Arrival arrival;
    if (!reader->Next(arrival)) Fail(r.key.input + " holds no picture");
    const PictureSize size = PaddedSize(info.width, info.height, 1, IsInterlaced(arrival.scan), arrival.fcc);
    const Z_VID_PROPS props = DescribeFrame(arrival.fcc, size.width, size.height, arrival.scan, info.rate.Value());
    uint8_t *pixels = nullptr;
    const Ref<IZFrame> frame = keyer.NewFrame(props, pixels);
    reader->Store(pixels, props);
    RepeatEdges(pixels, props, info.width, info.height);
    Sound sound;
    reader->TakeSound(sound);
    GiveSound(frame.get(), sound);
    const CHROMA_KEY_RAW key = KeyOf(r.key, keyer, frame.get(), info);
    keyer.SetKey(key);
    const Ref<IZFrame> keyed = keyer.Key(frame.get());
    Ref<IZFrame> own = OwnPicture(keyed.get(), info);
    Attach(own.get(), r, info, arrival.time);
    return own;
}

ExitStatus Save(const Words &arguments) {
    const SaveRequest r = ParseSave(arguments);
    if (r.key.help) {
        PrintOut(FrameHelp());
        return kExitDone;
    }
    const Ref<IZFrame> frame = KeyFirst(r);
    StoreFrame(frame.get(), r.key.output);
    if (!r.hold) return kExitDone;
    PrintOut(r.key.output + " can be loaded until this program's input ends\n");
    while (std::getchar() != EOF) {
    }
    return kExitDone;
}

ExitStatus Show(const Words &arguments) {
    if (arguments.size() != 1) FailUsage("zkey frame show FILE");
    PrintOut(DescribeStored(LoadFrame(arguments[0])));
    return kExitDone;
}

ExitStatus LoadPicture(const Words &arguments) {
    if (arguments.size() != 3 || (arguments[1] != "-o" && arguments[1] != "--output")) {
        FailUsage("zkey frame load FILE -o OUTPUT");
    }
    const std::string &path = arguments[0];
    if (WouldOverwrite(arguments[2], path)) FailUsage("the output would overwrite the input " + path);
    const StoredFrame stored = LoadFrame(path);
    if (stored.pixelsGone) {
        Fail("the pixels of " + path + " went with the program that stored it; store it with --hold and load it meanwhile");
    }
    Z_AV_PROPS props{};
    stored.frame->FrameAVPropsGet(&props);
    Delivery delivery;
    delivery.path = arguments[2];
    delivery.finish = NaturalAlpha(delivery.path, "");
    delivery.source.width = props.vidProps.nWidth;
    delivery.source.height = std::abs(props.vidProps.nHeight);
    delivery.source.still = true;
    const ImageView picture = Keyer::View(stored.frame.get(), delivery.source.width, delivery.source.height);
    const std::unique_ptr<MediaWriter> writer = OpenWriter(delivery);
    Image finished;
    if (delivery.finish != Finish::Premultiplied) FinishPicture(delivery.finish, picture, ImageView{}, finished);
    writer->Write(delivery.finish == Finish::Premultiplied ? picture : finished.View(), 0);
    writer->Close();
    return kExitDone;
}

}    // namespace

ExitStatus RunFrameCommand(const Words &arguments) {
    const std::string what = arguments.empty() ? "--help" : arguments[0];
    const Words rest(arguments.begin() + (arguments.empty() ? 0 : 1), arguments.end());
    if (what == "--help" || what == "-h" || (!rest.empty() && (rest[0] == "--help" || rest[0] == "-h"))) {
        PrintOut(FrameHelp());
        return kExitDone;
    }
    if (what == "save") return Save(rest);
    if (what == "show") return Show(rest);
    if (what == "load") return LoadPicture(rest);
    FailUsage("zkey frame: \"" + what + "\" is none of save, load and show");
}

}    // namespace zkey
