// A set of materials that between them switch on every feature of the
// renderer: the default, anisotropic grooves under the smooth highlight,
// refraction with incidence dependence and attenuation, thin glass, sky
// reflection with rainbow gloss, and emission; then the three whose
// per-pixel work has been the heaviest: concentric grooves with depth
// variation, a mirror and clear glass; and grooves under a broad highlight,
// whose facets light most of the shape. The benchmarks time them and the
// golden test pins their pictures.
#ifndef TAMERISK_BENCH_BENCH_MATERIALS_H
#define TAMERISK_BENCH_BENCH_MATERIALS_H

#include <string>
#include <vector>

#include <tamerisk/attribute.h>

struct BenchMaterial {
    std::string name;
    FZAttributeEx material;
};

inline std::vector<BenchMaterial> BenchMaterials()
{
    std::vector<BenchMaterial> set;
    set.push_back({"default", FZAttributeEx()});

    FZAttributeEx grooves;
    grooves.smoothHighlight = 1;
    grooves.smoothWidth = 2.0f;
    grooves.anisotropic = 1;
    grooves.anisotropy.type = 2;
    grooves.anisotropy.depthVariation = 0.5f;
    set.push_back({"smooth_anisotropic2", grooves});

    FZAttributeEx glass;
    glass.transparency = 0.8f;
    glass.refractiveIndex = 1.5f;
    glass.incidenceDependence = 0.5f;
    glass.attenuation = 0.5f;
    set.push_back({"refraction", glass});

    FZAttributeEx thin;
    thin.transparency = 0.8f;
    thin.refractiveIndex = 1.5f;
    thin.thinGlass = 1;
    thin.thickness = 4.0f;
    set.push_back({"thin_glass", thin});

    FZAttributeEx mirror;
    mirror.reflection = 0.6f;
    mirror.rainbow = 1;
    set.push_back({"reflection_rainbow", mirror});

    FZAttributeEx lamp;
    lamp.emission = 0.7f;
    lamp.color.SetBytes(255, 0, 0);
    set.push_back({"emission_red", lamp});

    FZAttributeEx rings;
    rings.anisotropic = 1;
    rings.anisotropy.type = 1;
    rings.anisotropy.depthVariation = 0.5f;
    set.push_back({"grooves_concentric1", rings});

    FZAttributeEx polished;
    polished.reflection = 0.8f;
    set.push_back({"mirror", polished});

    FZAttributeEx clear;
    clear.transparency = 0.9f;
    clear.refractiveIndex = 1.5f;
    set.push_back({"glass", clear});

    FZAttributeEx broad;
    broad.anisotropic = 1;
    broad.highlightStrength = 0.8f;
    broad.highlightSharpness = 0.6f;
    broad.color.SetBytes(150, 150, 160);
    broad.anisotropy.type = 1;
    broad.anisotropy.depthVariation = 1.0f;
    broad.anisotropy.grooveWidth = 2.0f;
    set.push_back({"grooves_broad_highlight", broad});
    return set;
}

#endif
