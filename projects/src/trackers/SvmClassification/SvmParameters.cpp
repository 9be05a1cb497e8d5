#include "trackers/SvmClassification/SvmParameters.h"

#include <cstdlib>

SvmParameters::SvmParameters()
{
    mParameter.svm_type = C_SVC;
    mParameter.kernel_type = RBF;
    mParameter.degree = 3;
    mParameter.nu = 0.5;
    mParameter.cache_size = 100; // MB
    mParameter.C = 1;
    mParameter.eps = 0.001;
    mParameter.p = 0.1;
    mParameter.shrinking = 1;
}

SvmParameters::SvmParameters(rktl::String const& options)
    : SvmParameters()
{
    auto const words = options.tokenize(" -");
    for (auto word = words.begin(); word != words.end(); ++word) {
        char const letter = word->front();
        if (++word == words.end())
            break;
        set(letter, std::strtod(word->c_str(), nullptr));
    }
}

void SvmParameters::set(char letter, double value)
{
    int const whole = static_cast<int>(value);
    switch (letter) {
    case 's':
        mParameter.svm_type = whole;
        break;
    case 't':
        mParameter.kernel_type = whole;
        break;
    case 'd':
        mParameter.degree = whole;
        break;
    case 'g':
        mParameter.gamma = value;
        break;
    case 'r':
        mParameter.coef0 = value;
        break;
    case 'n':
        mParameter.nu = value;
        break;
    case 'm':
        mParameter.cache_size = value;
        break;
    case 'c':
        mParameter.C = value;
        break;
    case 'e':
        mParameter.eps = value;
        break;
    case 'p':
        mParameter.p = value;
        break;
    case 'h':
        mParameter.shrinking = whole;
        break;
    case 'b':
        mParameter.probability = whole;
        break;
    case 'w':
        mWeights[0] = value;
        mParameter.nr_weight = 2;
        mParameter.weight_label = mLabels;
        mParameter.weight = mWeights;
        break;
    default:
        break;
    }
}
