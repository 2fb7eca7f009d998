#include "hosts/zkey/help.h"

#include "hosts/zkey/colours.h"
#include "hosts/zkey/edit_steps.h"
#include "hosts/zkey/frame_format.h"
#include "hosts/zkey/media.h"

namespace zkey {
namespace {

constexpr const char *kVersion = "1.0.0";

constexpr const char *kGeneral = R"(zkey: takes a coloured screen out of clips and pictures

  zkey key INPUT -o OUTPUT [options]   keys a clip or a picture
  zkey key --help                      all options
  zkey detect INPUT                    finds the screen of one picture and prints the key
  zkey edit INPUT STEP...              builds a key on one picture, step by step
  zkey props [NAME[=VALUE] ...]        the keyer's properties; --store keeps one, --forget forgets it
  zkey frame save|load|show ...        one keyed frame as a file, and what is in it
  zkey audio INPUT [options]           levels of the sound, its gain and its channels
  zkey --version                       version and what it was built with

A first try:  zkey key interview.mp4 -o interview.mov
It looks for a green or blue screen, says what it found, and writes a clip with transparency.
)";

constexpr const char *kFrame = R"(zkey frame save INPUT -o FILE [options]
  keys the first picture and stores the frame with its time and data. Pixels stay in memory that other programs
  can reach, and go when the program ends: with --hold it stays until its input ends
      --data NAME=TEXT    attaches data
      --hold              waits, so that others can load the pixels
      the options of the key, --raw and --prop as in zkey key --help
zkey frame show FILE
  tells what a stored frame holds
zkey frame load FILE -o OUTPUT
  writes the picture of a stored frame; .png, .raw and other pictures, as zkey key
)";

constexpr const char *kAudio = R"(zkey audio INPUT [options]

Tells the levels of each channel of the sound of INPUT: a WAV file, or any clip or sound that FFmpeg's libraries decode.
Decibels below full scale: the largest sample, the mean power (0 for a sine of full scale), and the library's slow meter
with its peak.

      --map LIST          these channels instead, in this order: 1,0 swaps two; 0,0 doubles the first; a channel that
                          is not there is silent
      --gain DB[:DB]      louder or softer by so many decibels, or in a ramp from the first to the second; -inf is
                          silence. Levels are those behind map and gain
  -o, --output FILE.wav   writes the sound
      --json              one JSON object: input, channels, rate, bits, float, samples, levels
                          (channel, peak, rms, vu, vu_peak; null where there is no finite number)
  -h, --help              this text

The whole sound lies in one frame, which has 2 GB at most. Sample for sample the same without --gain, whatever the map;
32-bit integers alone keep 24 bits where --map or --gain is given.
)";

constexpr const char *kKey = R"(zkey key INPUT -o OUTPUT [options]

INPUT is any clip or picture that FFmpeg's libraries read, a YUV4MPEG2 clip (.y4m, or - for standard input),
or raw frames with --raw.

Output
  -o, --output NAME   what to write, by its name:
                        .mov          clip with alpha, ProRes 4444 (--codec qtrle or png: lossless)
                        .webm         clip with alpha, VP9
                        .mkv          clip with alpha, lossless FFV1
                        .png          one picture; out_%04d.png: a numbered sequence
                        .mp4          needs --over or --matte, since it holds no alpha
                        .y4m          needs --over or --matte
                        .raw or -     raw frames: blue, green, red, alpha, as they leave the keyer
  -f, --format NAME   the same by format: raw, y4m, or a container of FFmpeg
      --codec NAME    another encoder of FFmpeg
      --over WHAT     composes over a colour, over "checker", or over a picture or clip
      --garbage L,T,R,B
                      so many pixels at the left, top, right and bottom border become transparent: lamps and
                      stands beside the screen. The screen is not looked for there
      --size SIZE     another size of the result: 1280x720; 1280x- or -x720 (the other side follows); 720p (1280x720);
                      50% (of the picture)
      --fit HOW       a picture of another shape than SIZE: letterbox (all of it, with transparent bars; the default),
                      crop (fills SIZE), stretch, none (not scaled, in the middle)
      --crop L,T,R,B  cuts so many pixels off the result at the left, top, right and bottom, before it is turned
      --rotate HOW    left, right or 180. Clips that players turn, as phones make them, come out upright without it
      --mirror HOW    h (left and right), v (top and bottom) or both
      --scaling N     the library's way to scale: 1 nearest, 2 linear, 4 cubic (taken to enlarge), 5 B-spline,
                      6 Catmull-Rom, 7 between these two, 8 super-sampling (taken to reduce), 9 Lanczos; 10 to 16 weigh
                      rows by tables; 0 or auto lets the library choose
      --matte         writes the matte alone: white figure, black screen
      --alpha KIND    straight or premultiplied colour. By default files get straight, raw frames premultiplied
      --no-audio      leaves sound out; otherwise it goes over unchanged where the output can hold it
      --frames N      stops after N frames

The key. Without --color the screen is looked for at the border of the pictures, all over a file.
  -c, --color COLOUR  the colour to take out: RRGGBB or a name. Up to 16; each may be followed by its own
                      --tolerance, --softness, --reverse and --set
  -t, --tolerance N   how far a colour may lie from that and still be wholly transparent, 0 to 255 (24).
                      Brightness may differ by 2 N. Raise it when parts of the screen stay; lower it when holes
                      appear in the figure. Three numbers, as 60,20,20, set the channels of the type one by one
  -s, --softness N    how wide the passage from transparent to solid is, 0 to 255 (40). 0 gives a hard edge;
                      raise it for hair, smoke and motion blur. A screen that was found has a softness for each
                      of its colours: N replaces all of them, +N and -N change them by so much
      --reverse       this colour is protected: it stays, whatever the other colours say. Its softness is 4 unless
                      given: a wide one brings a veil of the screen back
      --spill POWER[:CHROMA[:LUMA]]
                      takes the screen's light off the figure's edge, in percent (25 for a screen that was found, 0 for
                      colours that were given). POWER: how much of the screen's colour goes, and how far from the
                      screen; CHROMA: how much paler the edge gets (twice POWER); LUMA: how much darker (0)
      --type TYPE     how colours are compared: YUV (brightness and two colour differences; forgiving to
                      uneven light), HLS (hue, lightness, saturation), RGB, or Alpha (no keying)
      --key FILE.xml  takes a saved key; the other options of the key do not go with it
      --save-key FILE.xml
                      saves the key, given or found, as XML. Without -o nothing else is written
      --set FIELD=N   a field of the key by its name. For the whole key:
                        nMinTransparent  alpha below it becomes 0: cleans a noisy screen (16)
                        nMaxTransparent  alpha above it becomes 255: fills a figure with faint holes (235)
                        nEdgesSmooth     rounds of smoothing of the edge (0)
                        nInverseKey      1 swaps figure and screen
                        bColorCancel     0 switches --spill off
                      for the last colour:
                        nAlpha           keeps that much of the screen, 0 to 255
                        nCancelRange nCancelPower nCancelChroma nCancelLuma nCancelAlpha   spill of this colour, as raw numbers
                        nValue nDelta nSmoothRange nReverseKey   what the options above set, as raw numbers

The engine
      --prop NAME=VALUE   a property of the keyer, such as process.threads=4, output.thread=true, or
                          keying.borders="16 0 16 0" (left, top, right, bottom: keyed inside only, the outside stays
                          opaque). zkey props lists them
      --exact             frames are handed over at their own size. By default they are padded to whole blocks
                          and cropped again, so that no strip at the edge is left unkeyed

Raw frames
      --raw FORMAT:WxH[@RATE][:WORD...]
                          INPUT (a file or -) holds frames without headers, top row first, rows without padding.
                          Words: top or bottom (interlaced, that field first), progressive (the default); 601, 709
                          (the matrix, where the format's name or the size does not tell it), full (range)
)";

constexpr const char *kProps = R"(zkey props [NAME | NAME=VALUE ...] [--store | --forget]

Without names: all properties of the keyer with their values, kinds, defaults and meanings.
  NAME                 shows this one
  NAME=VALUE           checks the value and shows what the keyer makes of it
  NAME=VALUE --store   keeps the value for the next time, for all programs of this user that use the keyer
  NAME --forget        lets go of what was kept, also of a name that the keyer does not know

zkey key --prop NAME=VALUE sets a property for one run.
)";

constexpr const char *kDetect = R"(zkey detect INPUT [options]

Finds the screen of one picture of INPUT by the library's detection, and prints the key in the words of zkey key. A screen is
a green or blue area whose blocks are flat. Exit status 1 when there is none.

      --at TIME           the picture at this time, in seconds or as 1:02:03.5 (the first)
      --frame N           the picture with this number, from 0
      --raw FORMAT:WxH    as zkey key has it
      --type TYPE         the space in which colours are compared: HLS (the default), RGB or YUV
      --blocks N          blocks of the grid in each direction (48)
      --threshold N       how much the pixels of a block may differ from each other, in steps of a byte (16)
      --max-keys N        colours to be found at most, 1 to 16 (1)
      --key-diff X        how far colours may lie from each other; 0: as far as they like (1)
      --save-key FILE.xml saves the key for zkey key --key
      --preview FILE      writes the keyed picture
      --blocks-picture FILE
                          writes the picture with the blocks that were found painted over
)";

constexpr const char *kEdit = R"(zkey edit INPUT [options] STEP...

Builds a key on one picture of INPUT. All steps work on one key; each edit can be taken back. Without steps they come from
standard input, line by line: with a prompt at a terminal ("help" lists the steps, "quit" ends).

      --at TIME, --frame N, --raw FORMAT:WxH
                          which picture, as zkey detect has it
      --key FILE.xml      starts from a saved key
      --background WHAT   previews are composed over a colour, "checker", or a picture or clip
      --script FILE       steps from a file, some or one a line; # begins a comment
      --json              one JSON object a line for each step: op, status, history, entries, key, ms

Steps
)";

std::string Formats() {
    std::string out = "                          formats:\n";
    for (const NamedFormat *f = FormatTable(); f->name != nullptr; ++f) {
        std::string name(f->name);
        name.resize(8, ' ');
        out += "                            " + name + f->help + "\n";
    }
    return out;
}

}    // namespace

std::string GeneralHelp() { return kGeneral; }

std::string KeyHelp() {
    return std::string(kKey) + Formats() +
           "\nOther\n  -q, --quiet   errors only\n  -h, --help    this text\n\nColour names: " + ColourNames() +
           ".\n\nExit status: 0 done, 1 a file or the keyer refused, 2 wrong command line, 130 stopped with Ctrl-C (what was\n"
           "written so far plays).\n";
}

std::string DetectHelp() { return kDetect; }

std::string EditHelp() {
    return kEdit + StepsHelp() +
           "\nA first try:  zkey edit still.png detect set Power=0.2 preview out.png save key.xml\n"
           "Without max_keys each pick widens the one colour that there is; max_keys=4 opens more.\n"
           "detect tells what it found; where that is not the screen: reset, and add picks of it.\n"
           "Colors takes the screen's light off: 0.1 to 0.3; above, the whole picture turns grey.\n";
}

std::string PropsHelp() { return kProps; }

std::string FrameHelp() { return kFrame; }

std::string AudioHelp() { return kAudio; }

std::string VersionText() { return std::string("zkey ") + kVersion + ", " + LibavText() + "\n"; }

}    // namespace zkey
