#pragma once

#include "trackers/SvmClassification/TrainingData.h"

/// Ten samples of six records each, half of them of a class "Large" and half of "Not large", which are far apart.
inline rksl::List<TrainingData> classSamples()
{
    rksl::List<TrainingData> data;
    for (int i = 0; i < 10; ++i) {
        rksl::List<ObjectFeatures> records(6);
        int grain = i;
        for (ObjectFeatures& features : records)
            for (size_t slot = 0; slot < 12; ++slot)
                features.orientHist[slot] = (i % 2 ? 10 : 200) + (++grain * 7) % 10;
        data.emplace_back(records, i + 1, i % 2 ? "Not large" : "Large", rktl::TimeStamp());
    }
    return data;
}
