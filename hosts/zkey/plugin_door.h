// The keyer as this program uses it: everything that is said to the library is said here.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "hosts/zkey/composite.h"
#include "hosts/zkey/picture_shape.h"
#include "hosts/zkey/ref.h"
#include "zchromakey/zchromakey.h"

namespace zkey {

/// A status in words, with its number.
std::string StatusText(HRESULT status);

class Keyer {
public:
    /// Creates the keyer and a frame factory; ends the program with a line when the library refuses.
    Keyer();

    void SetProp(const std::string &name, const std::string &value);
    std::optional<std::string> Prop(const std::string &name);
    void SetKey(CHROMA_KEY_RAW key);
    /// Takes the key from a file that was saved. Ends the program with a line that names the file when there is no key in it,
    /// or only a part of one. Unless `quiet`, notes what else is doubtful in it.
    CHROMA_KEY_RAW LoadKey(const std::string &path, bool quiet);
    void SaveKey(const std::string &path);
    /// Names and values of all properties that the keyer keeps.
    std::vector<std::pair<std::string, std::string>> Props();

    /// A new frame of this description, with its pixels to be written. Any thread may call it.
    Ref<IZFrame> NewFrame(const Z_VID_PROPS &props, uint8_t *&pixels);

    /// Keys a frame. With the property output.thread the result is that of the frame before, and nothing for the first.
    Ref<IZFrame> Key(IZFrame *frame);
    /// The frame as the keyer sees it: only brought to 4 bytes a pixel. Resets the key.
    Ref<IZFrame> Convert(IZFrame *frame);
    /// A key object on a reference frame, with the keyer's properties and key and without a background.
    Ref<IZKey> KeyObject(IZFrame *reference);
    /// Takes the key of such an object.
    void TakeKey(IZKey *key);
    /// The frame behind an object that the library gave.
    static Ref<IZFrame> FrameOf(IUnknown *object);
    /// The result that is still owed after the last frame, if any.
    Ref<IZFrame> Drain();

    /// A frame of 4 bytes a pixel in another shape. The frame itself where the shape changes nothing. Any thread may call it.
    static Ref<IZFrame> Reshape(Ref<IZFrame> frame, const Shape &shape);

    /// The picture in a frame that the keyer gave, cropped to this size. Good while the frame lives.
    static ImageView View(IZFrame *frame, int width, int height);
    /// A copy of such a picture without its alpha.
    static Image Opaque(IUnknown *frame, int width, int height);
    /// Makes the borders of such a picture transparent.
    static void ClearBorders(IZFrame *frame, int width, int height, const Borders &borders);

private:
    bool OneCallLate();
    /// Ends the program with a line that names what is short, or these words where nothing is.
    [[noreturn]] void FailKeying(IZFrame *frame, const std::string &words);

    Ref<IZPlugin> m_plugin;
    Ref<IZChromaKey> m_key;
    Ref<IZProps> m_props;
    Ref<IZPersist> m_persist;
    Ref<IZFrames> m_frames;
    Ref<IZFrame> m_pending;    ///< handed over, its result not yet received
};

}    // namespace zkey
