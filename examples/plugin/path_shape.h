// The interface of the sample plug-in: what applications include to use its objects.
#pragma once

#include "qzobject.h"
#include "qzvariant.h"

/// A path of straight lines. Applications make one with
/// `CreateObject("PathShape", nullptr, typeid(IPathShape), ...)`, once "PathShape" is registered.
class IPathShape : public IPersistXStream {
public:
    virtual void AddPoint(const tagRPOINT& point) = 0;
    virtual unsigned GetPointCount() = 0;
    virtual tagRPOINT GetPoint(unsigned index) = 0; ///< @param index below GetPointCount()

    virtual void SetClosed(int closed) = 0; ///< whether the last point is joined to the first
    virtual int IsClosed() = 0;

    virtual void SetStroke(unsigned rgb, double width) = 0;
    virtual unsigned GetStrokeColor() = 0;
    virtual double GetStrokeWidth() = 0;

protected:
    ~IPathShape() = default;
};
