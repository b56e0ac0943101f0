// A plug-in with one persistable class. It is built against the public headers alone and is loaded by the
// library when the first object of its class is needed.
#include "path_shape.h"

#include "qzexception.h"
#include "qzref.h"
#include "qzstream.h"

#include <vector>

namespace {

constexpr unsigned kVersion = 1;
constexpr unsigned kFixedBytes = 3 * sizeof(unsigned) + sizeof(double) + sizeof(unsigned);
constexpr unsigned kPointBytes = sizeof(tagRPOINT);

class PathShapeObject final : public CQZUnknownImpl<IPathShape> {
public:
    // An object answers for its own interface and for those that it is derived from.
    int InternalQueryInterface(const std::type_info& iid, IQZUnknown** out) override {
        const bool persistence = iid == typeid(IPersistXStream) || iid == typeid(IPersistX);
        return persistence ? AnswerQuery(this, out) : CQZUnknownImpl::InternalQueryInterface(iid, out);
    }

    void AddPoint(const tagRPOINT& point) override { points_.push_back(point); }
    unsigned GetPointCount() override { return static_cast<unsigned>(points_.size()); }
    tagRPOINT GetPoint(unsigned index) override { return points_.at(index); }
    void SetClosed(int closed) override { closed_ = closed != 0; }
    int IsClosed() override { return closed_ ? 1 : 0; }
    void SetStroke(unsigned rgb, double width) override {
        color_ = rgb;
        width_ = width;
    }
    unsigned GetStrokeColor() override { return color_; }
    double GetStrokeWidth() override { return width_; }

    // The name of the class in streams is the name of the factory below.
    const char* GetClassName() override { return "PathShape"; }
    unsigned GetSizeMax() override { return kFixedBytes + GetPointCount() * kPointBytes; }

    int Save(IXStream* stream) override {
        stream->WriteDWord(kVersion);
        stream->WriteDWord(closed_ ? 1 : 0);
        stream->WriteDWord(color_);
        stream->WriteDouble(width_);
        stream->WriteDWord(GetPointCount());
        for (const tagRPOINT& point : points_) {
            stream->WriteDouble(point.x);
            stream->WriteDouble(point.y);
        }
        return 1;
    }

    int Load(IXStream* stream) override {
        if (stream->ReadDWord() != kVersion) throw CXException(QZERR_FORMAT);
        closed_ = stream->ReadDWord() != 0;
        color_ = stream->ReadDWord();
        width_ = stream->ReadDouble();
        // The count comes from a file: it must fit what the stream still holds.
        const unsigned count = stream->ReadDWord();
        if (count > (stream->GetSize() - stream->GetPosition()) / kPointBytes)
            throw CXException(QZERR_LENGTH);
        points_.assign(count, tagRPOINT());
        for (tagRPOINT& point : points_) {
            point.x = stream->ReadDouble();
            point.y = stream->ReadDouble();
        }
        return 1;
    }

private:
    std::vector<tagRPOINT> points_;
    bool closed_ = false;
    unsigned color_ = 0;
    double width_ = 1.0;
};

} // namespace

/// The factory, exported under the name of the class.
extern "C" __attribute__((dllexport)) int PathShape(IQZUnknown* outer, const std::type_info& iid,
                                                    IQZUnknown** out) {
    *out = nullptr;
    if (outer != nullptr) return 0; // not made to be part of another object
    const auto shape = CQZRef<IPathShape>::Adopt(new PathShapeObject);
    return shape->QueryInterface(iid, out);
}
