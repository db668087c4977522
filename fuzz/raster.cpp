// Members of raster objects in any order, by the face that clients see: two objects that exchange bitmaps and lists, with
// places, handles, arrays and blocks from nowhere. A result is a success or told by the mapper, an index is one of the list,
// and what an object hands out is whole.
#include "input.h"

#include "automation/faced_object.h"
#include "support/global_blocks.h"

#include <bit>
#include <type_traits>

using namespace fuzz;
using zkr::test::Array;
using zkr::test::RasterObject;

namespace {

int16_t Short(int32_t number) {
    return static_cast<int16_t>(number);
}

class Attack {
  public:
    explicit Attack(Input& input) : input_(input) {}

    void Step() {
        const auto [chosen, kind] = input_.Each(2, 5);
        RasterObject& object = objects_[static_cast<size_t>(chosen)];
        RasterObject& other = objects_[static_cast<size_t>(1 - chosen)];
        switch (kind) {
        case 0: Exchange(object, other); break;
        case 1: Shape(object); break;
        case 2: IsExactOnly ? Change(object) : Stray(object, other); break;
        default: Change(object); break;
        }
        for (RasterObject& each : objects_) {
            for (const int change : std::exchange(each.Told, {}))
                Note(change);
            NoteFacts(each);
        }
    }
    void NotePictures() {
        for (RasterObject& object : objects_)
            for (int place = 0; Listener != nullptr && place < 144; ++place) {
                uint32_t colour = 0;
                int16_t in = 0;
                object.GetPixel(float(place % 12), float(place / 12), &colour);
                object.IsPtInRgn(float(place % 12), float(place / 12), &in);
                NoteEach({colour, in});
            }
    }

  private:
    // A number from an eighth on, or any at all.
    float Place() {
        const int32_t number = input_.Near(100, -8);
        return number >= -8 && number < 100 ? static_cast<float>(number) / 8
               : IsExactOnly                ? static_cast<float>(number)
                                            : std::bit_cast<float>(number);
    }
    struct Places {
        float Left, Top, Width, Height;
    };
    Places Four() {
        const float left = Place(), top = Place(), width = Place();
        return {left, top, width, Place()};
    }
    int16_t Index() { return Short(input_.Near(4, -1)); }
    uint32_t Colour() { return input_.Word() & 0x07FFFFFF; } // those of the system are its own
    // Of a member that has failed or not, with what it has given.
    int32_t Told(int32_t status, int16_t result = 0) {
        FUZZ_EXPECT(status == 0 || (static_cast<uint32_t>(status) & 0xFFFF0000) == 0x800A0000);
        NoteEach({status, result});
        return status;
    }
    void Told(int32_t status, const Array& array) {
        NoteEach({Told(status), array.Count});
        const bool isFloats = array.Elements == Array::Kind::Floats;
        if (array.Count != 0)
            Note(array.Data, static_cast<size_t>(array.Count) * (isFloats ? sizeof(float) : 1));
    }
    template <typename T> T Fact(RasterObject& object, int32_t (RasterObject::*member)(T*)) {
        T value{};
        Told((object.*member)(&value));
        if constexpr (std::is_floating_point_v<T>)
            Note(&value, sizeof value);
        else
            Note(value);
        return value;
    }
    void NoteFacts(RasterObject& object) {
        const int32_t count = Fact(object, &RasterObject::GetBitmapListCount);
        const int16_t index = Fact(object, &RasterObject::GetBitmapListIndex);
        FUZZ_EXPECT(index >= 0 && index <= std::max(count - 1, 0));
        Fact(object, &RasterObject::GetBitmapBits), Fact(object, &RasterObject::GetIsGrayscale);
        Fact(object, &RasterObject::GetBitmapWidth), Fact(object, &RasterObject::GetBitmapHeight);
        Fact(object, &RasterObject::GetRgnLeft), Fact(object, &RasterObject::GetRgnTop);
        Fact(object, &RasterObject::GetRgnWidth), Fact(object, &RasterObject::GetRgnHeight);
        Fact(object, &RasterObject::GetRgnArea), Fact(object, &RasterObject::GetLevelLUTLength);
        Fact(object, &RasterObject::GetMinVal), Fact(object, &RasterObject::GetMaxVal);
        Fact(object, &RasterObject::GetMinBit), Fact(object, &RasterObject::GetMaxBit);
        Fact(object, &RasterObject::GetBitmapLeft), Fact(object, &RasterObject::GetBitmapTop);
    }

    void Create(RasterObject& object) {
        int16_t result = 0;
        const auto [width, height, bits, isUsers] = input_.Each(16, 16, 70, 4);
        const Array bytes{Array::Kind::Bytes, static_cast<int32_t>(std::size(bytes_)), bytes_, input_.Flip()};
        const Array& given = input_.Below(4) == 0 ? Array{} : bytes; // a bitmap without pixels
        const int32_t depth = input_.Flip() ? bits : input_.Depth();
        if (isUsers == 0)
            Told(object.CreateUserBitmap(float(width), float(height), Short(depth), given,
                                         given.Count == 0 ? 0 : (width * depth + 31) / 32 * 4 * height,
                                         &result),
                 result);
        else
            Told(object.CreateBitmap(float(width), float(height), Short(depth), &result), result);
    }
    void Exchange(RasterObject& object, RasterObject& other) {
        int16_t result = 0;
        intptr_t handle = 0;
        Told(object.PutRefBitmap(input_.Flip()));
        Told(object.PutRefBitmapList(input_.Flip()));
        Told(object.PutEnableMethodErrors(input_.Flip()));
        const auto [choice, type] = input_.Each(12, 3);
        const int16_t index = Index();
        switch (choice) {
        case 0: other.GetBitmap(&handle), Told(object.PutBitmap(handle)); break;
        case 1:
        case 2:
            other.GetBitmap(&handle);
            Told(object.InsertBitmapListItem(index, handle, &result), result);
            break;
        case 3: other.GetBitmapList(&handle), Told(object.PutBitmapList(handle)); break;
        case 4: Told(object.PutBitmapListIndex(index)); break;
        case 5: Told(object.DeleteBitmapListItems(index, input_.Near(3), &result), result); break;
        case 6: Told(object.Free(&result), result); break;
        case 7:
            other.GetDIB2(type, &handle);
            Told(object.SetDIB(handle, &result), result);
            if (handle != 0) zkr::test::FreeGlobal(reinterpret_cast<HGLOBAL>(handle));
            break;
        default: Create(object); break;
        }
    }

    void Shape(RasterObject& object) {
        int16_t result = 0;
        Array segments;
        const auto [choice, mode] = input_.Each(10, 8);
        const auto [left, top, width, height] = Four();
        const uint32_t colour = Colour();
        switch (choice) {
        case 0:
        case 1: Told(object.SetRgnRect(left, top, width, height, mode, &result), result); break;
        case 2: Told(object.SetRgnColor(colour, mode, &result), result); break;
        case 3: Told(object.SetRgnColorRGBRange(colour & 0x7F7F7F, 0xE0E0E0, mode, &result), result); break;
        case 4:
            Told(object.SetRgnColorHSVRange(input_.Hostile(), input_.Hostile(), mode, &result), result);
            break;
        case 5: Told(object.SetRgnMagicWand(left, top, Short(input_.Byte()), mode, &result), result); break;
        case 6: Told(object.OffsetRgn(left / 4, top / 4, &result), result); break;
        case 7: Told(object.ResizeRgn(mode, left / 4, &result), result); break;
        case 8: Told(object.FreeRgn(&result), result); break;
        default: Told(object.GetBitmapClipSegments(left, &segments), segments); break;
        }
    }

    void Change(RasterObject& object) {
        int16_t result = 0;
        Array array;
        uint8_t bytes[8];
        uint32_t value = 0;
        intptr_t handle = 0;
        input_.Fill(bytes, sizeof bytes);
        const auto [choice, entry, mode] = input_.Each(17, 300, 4);
        const auto [left, top, width, height] = Four();
        const uint32_t colour = Colour();
        const int16_t index = Index();
        const Array given{mode == 0 ? Array::Kind::SignedBytes : Array::Kind::Bytes, 8, bytes, false};
        switch (choice) {
        case 0:
        case 1: Told(object.PutPixel(left, top, colour)); break;
        case 2:
        case 3: Told(object.PutPixelData(left, top, given)); break;
        case 4: Told(object.GetPixelData(left, top, &array), array); break;
        case 5: Told(object.PutBitmapPalette(index, colour)); break;
        case 6: Told(object.PutLevelLUT(entry, colour)); break;
        case 7: NoteEach({Told(object.GetLevelLUT(entry, &value)), value}); break;
        case 8: Told(object.PutLevelLowBit(index)); break;
        case 9: Told(object.PutLevelHighBit(Short(entry % 16))); break;
        case 10: Told(object.GetMinMaxVal(&result), result), Told(object.GetMinMaxBits(nullptr)); break;
        case 11: Told(object.PutScaleMode(3 * mode)); break; // the others are by the screen's resolution
        case 12:
            Told(object.PutScaleLeft(left)), Told(object.PutScaleTop(top));
            Told(object.PutScaleWidth(50 + width)), Told(object.PutScaleHeight(200 + height));
            break;
        case 13: Told(object.PutIsSigned(-1)), Told(object.PutBitmapLeft(left * 9)); break;
        case 14: Told(object.NotifyChange(mode + 1, entry, 5, 6)); break;
        case 15: Told(object.EnableChangeEvents(Short(mode % 2), &result), result); break;
        default:
            Told(object.GetBitmapAlpha(&handle));
            Told(object.PutBitmapAlpha(handle));
            break;
        }
    }

    // A number that is no handle, one of another kind, and one that has been good.
    intptr_t StrayHandle(RasterObject& other) {
        intptr_t handle = 0;
        switch (input_.Below(6)) {
        case 0: return input_.Hostile();
        case 1: return reinterpret_cast<intptr_t>(bytes_ + input_.Below(8));
        case 2: return other.GetBitmapList(&handle), handle;
        case 3: return other.GetRgnHandle(&handle), regions_[input_.Byte() % 2] = handle;
        case 4: return other.GetBitmap(&handle), handle + input_.Below(3) - 1;
        default: return regions_[input_.Byte() % 2];
        }
    }
    // What only a system that knows its handles stands.
    void Stray(RasterObject& object, RasterObject& other) {
        int16_t result = 0;
        intptr_t handle = StrayHandle(other), made = 0;
        const auto [choice, mode, count] = input_.Each(16, 8, 20);
        const auto [left, top, width, height] = Four();
        switch (choice) {
        case 0: Told(object.PutBitmap(handle)); break;
        case 1: Told(object.InsertBitmapListItem(Index(), handle, &result)); break;
        case 2: Told(object.PutBitmapList(handle)); break;
        case 3: Told(object.PutBitmapAlpha(handle)); break;
        case 4: Told(object.SetDIB(handle, &result)); break;
        case 5: Told(object.SetDDB(handle, handle, 0, &result)); break;
        case 6: Told(object.SetRgnHandle(handle, mode, &result)); break;
        case 7: Told(object.DeleteRgnHandle(handle, &result)); break;
        case 8: Told(object.GetDDB(handle, &made)), object.DeleteRgnHandle(made, &result); break;
        case 9: Told(object.Capture(0, left, top, width, height, &result)); break;
        case 10:
            Told(object.Copy(0, Short(input_.Below(32)), &result)), Told(other.Paste(0, 0, &result));
            break;
        case 11:
            Told(object.GetBitmapDC(&made)), Exchange(object, other), Told(object.ReleaseBitmapDC(&result));
            break;
        case 12: Told(object.SetRgnEllipse(left, top, width, height, mode, &result)); break;
        case 13: Block(object); break;
        case 14:
            Told(object.PutCurveSize(count)), Told(object.PutPolygonSize(count));
            Told(object.PutCurveX(mode, left)), Told(object.PutPolygonY(mode, top));
            Told(object.PutCurveType(input_.Byte() % 3)), Told(object.PutCurveClose(input_.Byte() % 4));
            Told(object.SetRgnCurve(mode % 3, mode, &result)), Told(object.CurveToBezier(&result));
            Told(object.SetRgnPolygon(mode % 3, mode, &result));
            break;
        default: Told(object.PutScaleMode(mode)); break;
        }
    }
    // A device-independent bitmap whose header tells anything.
    void Block(RasterObject& object) {
        int16_t result = 0;
        const Exact bytes(static_cast<size_t>(input_.Below(300)), input_);
        int32_t header[] = {40, input_.Near(20), input_.Near(20, -20), 1 | input_.Near(33) << 16,
                            input_.Near(4)};
        if (bytes.Count >= sizeof header) std::memcpy(bytes.Get(), header, sizeof header);
        HGLOBAL block = zkr::test::GlobalOf(bytes.Get(), bytes.Count);
        Told(object.SetDIB(reinterpret_cast<intptr_t>(block), &result));
        zkr::test::FreeGlobal(block);
    }

    Input& input_;
    uint8_t bytes_[800] = {}; // outlives the objects
    intptr_t regions_[2] = {};
    std::array<RasterObject, 2> objects_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    Attack attack(input);
    for (int steps = 0; steps < 60 && !input.IsEmpty(); ++steps)
        attack.Step();
    attack.NotePictures();
    return 0;
}
