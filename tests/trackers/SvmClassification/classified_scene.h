#pragma once

#include "image/rkil_FlatImage.h"
#include "support/tracked.h"
#include "support/svm_model_bytes.h"
#include "trackers/SvmClassification/ClassificationModel.h"
#include "trackers/SvmClassification/SvmModel.h"

#include <string>

/// A gray frame of 100 by 80 with objects, as the tracking stage leaves it, and all of it foreground.
class ClassifiedScene : public TrackedScene {
public:
    ClassifiedScene()
        : TrackedScene(100, 80)
    {
        mGray.resize(100, 80);
        for (uint32_t i = 0; i < mGray.getImage()->size; ++i)
            mGray.getImage()->data[i] = static_cast<unsigned char>(i % 100 / 10 * 25);
        mMask.resize(100, 80, 255);
        setImages();
    }

    void setImages(bool moving = true, bool standing = false)
    {
        frame.clearImages();
        frame.setImage("Native Image", *mGray.getImage(), rkil::MultiImage::flatGray);
        if (moving)
            frame.setImage("Processed Image", *mMask.getImage(), rkil::MultiImage::flatGray);
        if (standing)
            frame.setImage("Stationary Object Processed", *mMask.getImage(), rkil::MultiImage::flatGray);
    }

private:
    rkil::FlatImage<1> mGray;
    rkil::FlatImage<1> mMask;
};

/// A model whose decision is `decision` whatever it sees: above 0 yes, with the probability 1 / (1 + exp(-decision)).
inline ClassificationModel steadfast(std::string const& name, double decision)
{
    SvmModelBytes form;
    form.name = name;
    form.max = form.min;
    form.rho = -decision;
    SvmModel model;
    support::fromBin(model, form.bytes());
    return ClassificationModel("SVM", name, model, true);
}
