// Objects of a plug-in: made by name, asked for interfaces, stored, shared.
#include "guide.h"

#include "path_shape.h"
#include "qzcore.h"

#include <cstdio>

namespace {

CQZRef<IPathShape> make_line() {
    auto line = qz::create<IPathShape>("PathShape");
    if (!line) throw CXIFaceException(typeid(IPathShape));
    line->AddPoint({0, 0});
    line->AddPoint({30, 40});
    return line;
}

// Through a stream and back: the record holds the name of the class, and reading makes a new object of it.
CQZRef<IQZUnknown> travelled(IPersistXStream& object) {
    const auto stream = qz::new_stream();
    WriteObjectToXStream(stream.Get(), &object);
    std::printf("stored as %s, %u bytes\n", object.GetClassName(), stream->GetSize());
    stream->Seek(0, 0);
    CQZRef<IQZUnknown> copy;
    ReadObjectFromXStream(stream.Get(), copy.Put());
    return copy;
}

} // namespace

void objects(const Argument&) {
    std::printf("before it is registered: %s\n", qz::create<IPathShape>("PathShape") ? "made" : "unknown");
    RegisterObject("PathShape", "path_shape.dll"); // loaded when the first object is made

    const auto line = make_line();
    const auto copy = travelled(*line);
    if (const auto path = CQZRef<IPathShape>::Query(copy.Get()))
        std::printf("read back with %u points\n", path->GetPointCount());
    if (!CQZRef<IXStream>::Query(copy.Get())) std::printf("and it is no stream\n");

    // A container of services: objects by name, for all parts of an application.
    const auto services = qz::new_service_container();
    services->AddService("the line", line.Get());
    services->AddService("settings", qz::new_tree().Get());
    for (const auto& [name, service] : qz::named_services(*services))
        std::printf("service: %s\n", name);
    for (const auto& path : qz::services<IPathShape>(*services))
        std::printf("a path among them, %s\n", path == line ? "the very same" : "another one");
    services->RemoveAllServices();

    UnregisterObject("PathShape");
}
