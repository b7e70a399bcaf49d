#pragma once

#include <QtGlobal>

// What a document needs of the status bar while it loads or saves a long file.
class IProgressSink
{
public:
    virtual ~IProgressSink() = default;
    virtual void StartProgress(qint64 range) = 0;
    virtual void SetProgress(qint64 done) = 0;
    virtual void StopProgress() = 0;
    // Offers a Cancel beside the progress until StopProgress; a sink without one never
    // reports a cancel.
    virtual void OfferCancel() {}
    virtual bool CancelRequested() const { return false; }
};
