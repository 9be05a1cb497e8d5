#include "goals/Peer.h"

#ifdef CONTRAFLOW_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <opencv2/video.hpp>
#ifdef CONTRAFLOW_OPENCV_BGSEGM
#include <opencv2/bgsegm.hpp>
#endif

namespace {

class SubtractorPeer : public Peer {
public:
    explicit SubtractorPeer(cv::Ptr<cv::BackgroundSubtractor> subtractor)
        : mSubtractor(subtractor)
        , mSquare(cv::getStructuringElement(cv::MORPH_RECT, cv::Size(3, 3)))
    {
        cv::setNumThreads(1);
    }

    void subtract(rk_image const& frame) override
    {
        cv::Mat const image(static_cast<int>(frame.height), static_cast<int>(frame.width), CV_8UC1, frame.data);
        mSubtractor->apply(image, mForeground);
    }

protected:
    cv::Mat const& openAndClose()
    {
        cv::morphologyEx(mForeground, mForeground, cv::MORPH_OPEN, mSquare);
        cv::morphologyEx(mForeground, mForeground, cv::MORPH_CLOSE, mSquare);
        return mForeground;
    }

private:
    cv::Ptr<cv::BackgroundSubtractor> mSubtractor;
    cv::Mat mSquare;
    cv::Mat mForeground;
};

class LabelledPeer : public SubtractorPeer {
public:
    using SubtractorPeer::SubtractorPeer;

    void findRegions() override { cv::connectedComponentsWithStats(openAndClose(), mLabels, mStats, mCentres); }

private:
    cv::Mat mLabels, mStats, mCentres;
};

#ifdef CONTRAFLOW_OPENCV_BGSEGM
class ContourPeer : public SubtractorPeer {
public:
    using SubtractorPeer::SubtractorPeer;

    void findRegions() override { cv::findContours(openAndClose(), mContours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_SIMPLE); }

private:
    std::vector<std::vector<cv::Point>> mContours;
};
#endif

} // namespace

std::unique_ptr<Peer> Peer::mixture()
{
    return std::make_unique<LabelledPeer>(cv::createBackgroundSubtractorMOG2(500, 16, false));
}
#else
std::unique_ptr<Peer> Peer::mixture()
{
    return nullptr;
}
#endif

std::unique_ptr<Peer> Peer::counting()
{
#ifdef CONTRAFLOW_OPENCV_BGSEGM
    return std::make_unique<ContourPeer>(cv::bgsegm::createBackgroundSubtractorCNT(15, true, 15 * 60, false));
#else
    return nullptr;
#endif
}
